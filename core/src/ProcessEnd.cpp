#include "velm/core/ProcessEnd.h"

#include <windows.h>

extern "C" unsigned char WINAPI RtlDllShutdownInProgress();  // in ntdll.dll; MinGW's headers lack it

namespace velm {

bool IsProcessEnding() {
    return RtlDllShutdownInProgress() != FALSE;
}

}  // namespace velm
