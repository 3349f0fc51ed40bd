/// @file
/// What Windows' C runtime adds to <stdlib.h>.
#pragma once

#include "windef.h"

extern "C" {

/// Names are compared without regard to the case of ASCII letters, as on Windows. The copy is freed with
/// free.
int _wdupenv_s(wchar_t** value, SIZE_T* units, const wchar_t* name);

/// An empty value removes the variable.
int _wputenv_s(const wchar_t* name, const wchar_t* value);

}  // extern "C"
