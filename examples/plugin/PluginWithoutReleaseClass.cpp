/// @file
/// A plug-in whose object needs no release.
#include "PluginExport.h"

VELM_PLUGIN_EXPORT void AllocateClass(void** object) {
    static int only = 0;
    *object = &only;
}
