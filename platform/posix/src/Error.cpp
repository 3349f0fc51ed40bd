#include <windows.h>

#include "Handle.h"
#include "Intercept.h"

namespace {

thread_local DWORD t_lastError = ERROR_SUCCESS;

}  // namespace

unsigned int velm::posix::OpenHandles() {
    return Object::Count();
}

DWORD GetLastError() {
    return t_lastError;
}

void SetLastError(DWORD code) {
    t_lastError = code;
}

// Deletes the object even if the call is made to fail, so that tests do not leak.
BOOL CloseHandle(HANDLE handle) {
    const bool fails = velm::posix::MustFail("CloseHandle");
    auto* object = velm::posix::FromHandle<velm::posix::Object>(handle);
    if (object == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    delete object;
    return !fails;
}
