/// @file
/// A plug-in without ReleaseClass: its object is static.
#include "PluginExport.h"

VELM_PLUGIN_EXPORT void AllocateClass(void** object) {
    static int only = 0;
    *object = &only;
}
