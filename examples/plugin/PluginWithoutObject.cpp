/// @file
/// A plug-in that never has an object to give.
#include "PluginExport.h"

VELM_PLUGIN_EXPORT void AllocateClass(void** object) {
    *object = nullptr;
}

VELM_PLUGIN_EXPORT void ReleaseClass(void**) {}
