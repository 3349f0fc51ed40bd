/// @file
/// What Windows' C runtime adds to <stdio.h>.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>

extern "C" {

/// @return 0, or the error number; `*file` is then null
int fopen_s(std::FILE** file, const char* path, const char* mode);

/// @return the characters written; negative when the buffer is too small
int _vsnprintf(char* buffer, std::size_t size, const char* format, std::va_list arguments);

}  // extern "C"
