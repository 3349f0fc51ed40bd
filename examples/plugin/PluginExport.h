#pragma once

#include "velm/core/Export.h"

/// What a plug-in exports goes by its plain name.
#define VELM_PLUGIN_EXPORT extern "C" VELM_DLL_EXPORT
