#include "velm/platform/SystemInfo.h"

#include <dlfcn.h>
#include <link.h>
#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
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

std::string ProcessorName() {
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);) {
        if (const std::size_t colon = line.find(": "); line.starts_with("model name") && colon != line.npos) {
            return line.substr(colon + 2);
        }
    }
    return {};
}

unsigned long long PhysicalMemory() {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long size = sysconf(_SC_PAGESIZE);
    return pages > 0 && size > 0
               ? static_cast<unsigned long long>(pages) * static_cast<unsigned long long>(size)
               : 0;
}

std::string ClockSource() {
    std::ifstream file("/sys/devices/system/clocksource/clocksource0/current_clocksource");
    std::string source;
    return std::getline(file, source) ? "CLOCK_MONOTONIC over " + source : "CLOCK_MONOTONIC";
}

std::vector<Display> Displays() {
    return {};
}

UserIdentity CurrentUser() {
    UserIdentity user;
    if (const passwd* const entry = getpwuid(getuid())) {
        user.names.emplace_back(entry->pw_name);
        user.homes.emplace_back(entry->pw_dir);
    }
    return user;
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

std::string LoadErrorText(unsigned long) {
    const char* const message = dlerror();
    return message != nullptr ? message : "";
}

}  // namespace velm::platform
