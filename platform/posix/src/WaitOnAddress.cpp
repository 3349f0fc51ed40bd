#include <windows.h>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <ctime>

#include "Intercept.h"

using namespace velm::posix;

namespace {

long Futex(volatile void* address, int operation, unsigned int value, const timespec* timeout) {
    return syscall(SYS_futex, address, operation | FUTEX_PRIVATE_FLAG, value, timeout, nullptr, 0);
}

}  // namespace

BOOL WaitOnAddress(volatile void* address, void* compare, SIZE_T size, DWORD milliseconds) {
    if (MustFail("WaitOnAddress")) {
        return FALSE;
    }
    unsigned int expected = 0;
    if (size != sizeof expected) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    std::memcpy(&expected, compare, sizeof expected);
    const timespec timeout{milliseconds / 1000, static_cast<long>(milliseconds % 1000) * 1'000'000};
    if (Futex(address, FUTEX_WAIT, expected, milliseconds == INFINITE ? nullptr : &timeout) != 0 &&
        errno == ETIMEDOUT) {
        SetLastError(ERROR_TIMEOUT);
        return FALSE;
    }
    return TRUE;
}

void WakeByAddressSingle(void* address) {
    Futex(address, FUTEX_WAKE, 1, nullptr);
}

void WakeByAddressAll(void* address) {
    Futex(address, FUTEX_WAKE, INT_MAX, nullptr);
}
