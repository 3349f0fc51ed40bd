/// @file
/// Not a plug-in: it does not export AllocateClass.
#include "PluginExport.h"

VELM_PLUGIN_EXPORT void ReleaseClass(void**) {}
