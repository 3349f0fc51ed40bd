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
