/// @file
/// Windows' additions to <stdlib.h>.
#pragma once

#include "windef.h"

extern "C" {

/// Copies a variable's value. Names are compared ignoring the case of ASCII letters, as on Windows.
/// @param value  out: the copy, which the caller frees with free
int _wdupenv_s(wchar_t** value, SIZE_T* units, const wchar_t* name);

/// Sets a variable.
/// @param entry  NAME=VALUE; an empty value removes the variable
/// @return 0, or -1
int _wputenv(const wchar_t* entry);

}  // extern "C"
