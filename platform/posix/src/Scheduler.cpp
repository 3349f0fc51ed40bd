#include <windows.h>
#include <avrt.h>

#include <cwchar>
#include <new>

#include "Handle.h"
#include "Intercept.h"

using namespace velm::posix;

namespace {

class Registration : public Object {
public:
    const DWORD m_thread = GetCurrentThreadId();
};

/// Returns the registration if it belongs to the calling thread; otherwise null.
Registration* OwnRegistration(HANDLE handle) {
    auto* registration = FromHandle<Registration>(handle);
    if (registration == nullptr || registration->m_thread != GetCurrentThreadId()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return registration;
}

}  // namespace

HANDLE AvSetMmThreadCharacteristicsW(LPCWSTR task, LPDWORD taskIndex) {
    if (MustFail("AvSetMmThreadCharacteristicsW")) {
        return nullptr;
    }
    if (task == nullptr || taskIndex == nullptr || std::wcscmp(task, L"Audio") != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    auto* registration = new (std::nothrow) Registration;
    if (registration == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    *taskIndex = 1;
    return ToHandle(registration);
}

BOOL AvSetMmThreadPriority(HANDLE registration, AVRT_PRIORITY priority) {
    if (MustFail("AvSetMmThreadPriority") || OwnRegistration(registration) == nullptr) {
        return FALSE;
    }
    return WithinSystem(FALSE, [&] { return RecordShown({"AvSetMmThreadPriority", {}, {priority}}), TRUE; });
}

BOOL AvRevertMmThreadCharacteristics(HANDLE handle) {
    if (MustFail("AvRevertMmThreadCharacteristics")) {
        return FALSE;
    }
    const Registration* const registration = OwnRegistration(handle);
    if (registration == nullptr) {
        return FALSE;
    }
    delete registration;
    SetLastError(ERROR_SUCCESS);  // successful calls may clear the last error
    return TRUE;
}
