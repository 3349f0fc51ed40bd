/// @file
/// A complete plug-in for LoadClassPointerFromDll. It counts its objects, so that tests can check that each
/// is released exactly once.
#include <atomic>
#include <new>

#include "PluginExport.h"

namespace {

std::atomic<int> g_allocated{0};
std::atomic<int> g_released{0};

/// The object that the plug-in provides. Here, host and plug-in share the class; a real plug-in would share
/// an interface.
struct Greeter {
    int answer = 42;
};

}  // namespace

VELM_PLUGIN_EXPORT void AllocateClass(void** object) {
    *object = new (std::nothrow) Greeter;
    if (*object != nullptr) {
        ++g_allocated;
    }
}

VELM_PLUGIN_EXPORT void ReleaseClass(void** object) {
    delete static_cast<Greeter*>(*object);
    *object = nullptr;
    ++g_released;
}

VELM_PLUGIN_EXPORT int GetAllocatedCount() {
    return g_allocated;
}

VELM_PLUGIN_EXPORT int GetReleasedCount() {
    return g_released;
}
