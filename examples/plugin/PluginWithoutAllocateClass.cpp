/// @file
/// A library that is no plug-in: it cannot allocate.
#include "PluginExport.h"

VELM_PLUGIN_EXPORT void ReleaseClass(void**) {}
