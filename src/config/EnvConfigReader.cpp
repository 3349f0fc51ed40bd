#include "velm/EnvConfigReader.h"

#include <windows.h>

#include <cstdlib>
#include <memory>
#include <new>

#include "velm/WindowsUtil.h"

namespace velm {

EnvConfigReader::EnvConfigReader() = default;
EnvConfigReader::EnvConfigReader(const EnvConfigReader&) = default;
EnvConfigReader& EnvConfigReader::operator=(const EnvConfigReader&) = default;
EnvConfigReader::~EnvConfigReader() = default;

void EnvConfigReader::GetIfOk(const std::string& name, std::string& value) {
    std::wstring wideName;
    if (WindowsUtil::GetWstringFromOemcpString(name, wideName).IsFailed()) {
        return;
    }
    wchar_t* copy = nullptr;
    if (_wdupenv_s(&copy, nullptr, wideName.c_str()) != 0) {
        return;
    }
    const std::unique_ptr<wchar_t, decltype(&std::free)> guard(copy, &std::free);
    if (copy == nullptr) {
        return;  // not set
    }
    try {
        WindowsUtil::GetUtf8StringFromWstring(copy, value);
    } catch (const std::bad_alloc&) {
        return;  // `value` is unchanged, as after any other failure
    }
}

}  // namespace velm
