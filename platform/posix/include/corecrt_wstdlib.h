/// @file
/// What Windows' C runtime adds to <stdlib.h>.
#pragma once

#include "windef.h"

extern "C" {

/// Names are compared without regard to the case of ASCII letters, as on Windows. The copy is freed with
/// free.
int _wdupenv_s(wchar_t** value, SIZE_T* units, const wchar_t* name);

/// Sets a variable.
/// @param entry  NAME=VALUE; an empty value removes the variable
/// @return 0, or -1
int _wputenv(const wchar_t* entry);

}  // extern "C"
