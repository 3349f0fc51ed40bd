#include <malloc.h>

#include <filesystem>
#include <iterator>

#include "ProcessResources.h"
#include "velm/posix/Control.h"

namespace velm::test {
namespace {

long long CountEntries(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

}  // namespace

ProcessResources GetProcessResources() {
    return {CountEntries("/proc/self/fd") + posix::OpenHandles(), CountEntries("/proc/self/task"),
            static_cast<long long>(mallinfo2().uordblks), posix::OpenDeviceContexts()};
}

}  // namespace velm::test
