#include "velm/platform/SystemInfo.h"

#include <link.h>
#include <sys/utsname.h>

#include <filesystem>
#include <system_error>

namespace velm::platform {
namespace {

struct Search {
    std::string fileName;  // "libVelmUtil.so"
    std::string path;
};

int Visit(dl_phdr_info* info, std::size_t, void* parameter) {
    auto& search = *static_cast<Search*>(parameter);
    const std::string path = info->dlpi_name;
    if (path.find('/' + search.fileName) == path.npos) {
        return 0;
    }
    search.path = path;
    return 1;
}

}  // namespace

std::string SystemName() {
    utsname system{};
    uname(&system);
    return std::string(system.sysname) + ' ' + system.release +
           ", with stand-ins for Windows' windows, displays, priorities and multimedia scheduler";
}

LibraryFile FindLibrary(const std::string& name) {
    Search search{"lib" + name + ".so", ""};
    dl_iterate_phdr(&Visit, &search);
    // The file that the symbolic links point to is named after its version.
    std::error_code failed;
    const std::string path = std::filesystem::canonical(search.path, failed).string();
    const std::size_t suffix = path.rfind(search.fileName + '.');
    return {path, suffix == path.npos ? "" : path.substr(suffix + search.fileName.size() + 1)};
}

}  // namespace velm::platform
