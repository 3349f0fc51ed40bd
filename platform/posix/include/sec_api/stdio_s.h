/// @file
/// What Windows' C runtime adds to <stdio.h>.
#pragma once

#include <cstdio>

extern "C" {

/// @return 0, or the error number; `*file` is then null
int fopen_s(std::FILE** file, const char* path, const char* mode);

}  // extern "C"
