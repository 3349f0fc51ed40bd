#include <windows.h>

#include <cerrno>

#include "Intercept.h"

int fopen_s(std::FILE** file, const char* path, const char* mode) {
    *file = nullptr;
    if (velm::posix::MustFail("fopen_s")) {
        return EACCES;
    }
    *file = std::fopen(path, mode);
    return *file != nullptr ? 0 : errno;
}

int _vsnprintf(char* buffer, std::size_t size, const char* format, std::va_list arguments) {
    const int length = std::vsnprintf(buffer, size, format, arguments);
    return length >= 0 && static_cast<std::size_t>(length) < size ? length : -1;
}
