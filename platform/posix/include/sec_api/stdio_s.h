/// @file
/// Windows' additions to <stdio.h>.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>

extern "C" {

/// @return 0; otherwise the error number, with `*file` null
int fopen_s(std::FILE** file, const char* path, const char* mode);

/// @return characters written, without the NUL; negative when they do not fit
int _vsnprintf(char* buffer, std::size_t size, const char* format, std::va_list arguments);

}  // extern "C"
