#include "velm/core/ProcessEnd.h"

#include <windows.h>

extern "C" unsigned char WINAPI RtlDllShutdownInProgress();  // ntdll's, in none of MinGW's headers

namespace velm {

bool IsProcessEnding() {
    return RtlDllShutdownInProgress() != FALSE;
}

}  // namespace velm
