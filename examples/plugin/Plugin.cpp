/// @file
/// A plug-in as LoadClassPointerFromDll expects it. It also counts, so that a test can see that each object
/// that it gave was released once.
#include <atomic>
#include <new>

#include "PluginExport.h"

namespace {

std::atomic<int> g_allocated{0};
std::atomic<int> g_released{0};

/// What the plug-in offers. Both sides know the class; an application would use an interface.
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
