/// @file
/// Marks what the two libraries export. The project's only header that depends on the platform.
#pragma once

/// @cond INTERNAL
#if defined(_WIN32)
#define VELM_DLL_EXPORT __declspec(dllexport)
#define VELM_DLL_IMPORT __declspec(dllimport)
#else
#define VELM_DLL_EXPORT __attribute__((visibility("default")))
#define VELM_DLL_IMPORT __attribute__((visibility("default")))
#endif

// The build defines VelmCore_EXPORTS or VelmUtil_EXPORTS while compiling that library.
#if defined(VelmCore_EXPORTS)
#define VELM_CORE_API VELM_DLL_EXPORT
#else
#define VELM_CORE_API VELM_DLL_IMPORT
#endif

#if defined(VelmUtil_EXPORTS)
#define VELM_UTIL_API VELM_DLL_EXPORT
#else
#define VELM_UTIL_API VELM_DLL_IMPORT
#endif
/// @endcond
