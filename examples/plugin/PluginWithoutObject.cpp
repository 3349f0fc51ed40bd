/// @file
/// A plug-in whose AllocateClass returns no object.
#include "PluginExport.h"

VELM_PLUGIN_EXPORT void AllocateClass(void** object) {
    *object = nullptr;
}

VELM_PLUGIN_EXPORT void ReleaseClass(void**) {}
