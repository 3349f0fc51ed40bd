#pragma once

#include "velm/core/Export.h"

/// Exports a function under its plain, unmangled name.
#define VELM_PLUGIN_EXPORT extern "C" VELM_DLL_EXPORT
