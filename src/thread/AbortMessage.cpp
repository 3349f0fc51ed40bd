#include "velm/AbortMessage.h"

#include <windows.h>

#include <cstdarg>
#include <cstdio>

namespace velm {

void AbortMessage(const char* format, ...) {
    if (format == nullptr) {
        return;
    }
    char message[1024];
    va_list arguments;
    va_start(arguments, format);
    // Not std::vsnprintf: MinGW's takes a buffer of the field's width and precision from the stack, however
    // large.
    _vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);
}

}  // namespace velm
