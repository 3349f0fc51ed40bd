#include <windows.h>
#include <strings.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cwchar>
#include <mutex>
#include <string>

#include "Intercept.h"
#include "Text.h"

using namespace velm::posix;

namespace {

// Guards the environment against the other calls in this file.
std::mutex g_environmentMutex;

/// Returns a variable's "NAME=VALUE"; null when it is not set.
char* FindVariable(const std::string& name) {
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        if (strncasecmp(*entry, name.c_str(), name.size()) == 0 && (*entry)[name.size()] == '=') {
            return *entry;
        }
    }
    return nullptr;
}

bool IsName(const std::string& name) {
    return !name.empty() && name.find('=') == name.npos;
}

}  // namespace

BOOL SetEnvironmentVariableW(LPCWSTR wideName, LPCWSTR value) {
    if (MustFail("SetEnvironmentVariableW")) {
        return FALSE;
    }
    return WithinSystem(FALSE, [&]() -> BOOL {
        std::string name = Utf8(wideName != nullptr ? wideName : L"");
        if (!IsName(name)) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return FALSE;
        }
        const std::lock_guard lock(g_environmentMutex);
        if (const char* const entry = FindVariable(name)) {
            name.assign(entry, name.size());  // keep the existing spelling
        }
        return (value != nullptr ? setenv(name.c_str(), Utf8(value).c_str(), 1) : unsetenv(name.c_str())) ==
               0;
    });
}

int _wdupenv_s(wchar_t** value, SIZE_T* units, const wchar_t* wideName) {
    if (value == nullptr || wideName == nullptr) {
        return EINVAL;
    }
    *value = nullptr;
    if (units != nullptr) {
        *units = 0;
    }
    if (MustFail("_wdupenv_s")) {
        return ENOMEM;
    }
    return WithinSystem(ENOMEM, [&]() -> int {
        const std::string name = Utf8(wideName);
        const std::lock_guard lock(g_environmentMutex);
        const char* const entry = IsName(name) ? FindVariable(name) : nullptr;
        if (entry == nullptr) {
            return 0;
        }
        const std::wstring text = Wide(entry + name.size() + 1);
        auto* const copy = static_cast<wchar_t*>(std::calloc(text.size() + 1, sizeof(wchar_t)));
        if (copy == nullptr) {
            return ENOMEM;
        }
        text.copy(copy, text.size());
        *value = copy;
        if (units != nullptr) {
            *units = text.size() + 1;
        }
        return 0;
    });
}

int _wputenv(const wchar_t* entry) {
    const wchar_t* const equals = std::wcschr(entry, L'=');
    if (equals == nullptr) {
        return -1;
    }
    const wchar_t* const value = equals[1] != L'\0' ? equals + 1 : nullptr;
    return SetEnvironmentVariableW(std::wstring(entry, equals).c_str(), value) ? 0 : -1;
}
