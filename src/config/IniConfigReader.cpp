#include "velm/IniConfigReader.h"

#include <windows.h>

#include "velm/WindowsUtil.h"

namespace velm {

IniConfigReader::IniConfigReader() = default;
IniConfigReader::IniConfigReader(const IniConfigReader&) = default;
IniConfigReader& IniConfigReader::operator=(const IniConfigReader&) = default;
IniConfigReader::~IniConfigReader() = default;

void IniConfigReader::GetIfOk(const std::string& fileName, const std::string& section, const std::string& key,
                              int defaultValue, int& value) {
    std::wstring wideFile;
    std::wstring wideSection;
    std::wstring wideKey;
    if (WindowsUtil::GetWstringFromOemcpString(fileName, wideFile).IsFailed() ||
        WindowsUtil::GetWstringFromOemcpString(section, wideSection).IsFailed() ||
        WindowsUtil::GetWstringFromOemcpString(key, wideKey).IsFailed()) {
        return;
    }
    value = static_cast<int>(
        GetPrivateProfileIntW(wideSection.c_str(), wideKey.c_str(), defaultValue, wideFile.c_str()));
}

void IniConfigReader::GetIfOk(const std::string& fileName, const std::string& section, const std::string& key,
                              const std::string& defaultText, std::string& value) {
    std::wstring wideFile;
    std::wstring wideSection;
    std::wstring wideKey;
    std::wstring wideDefault;
    if (WindowsUtil::GetWstringFromOemcpString(fileName, wideFile).IsFailed() ||
        WindowsUtil::GetWstringFromOemcpString(section, wideSection).IsFailed() ||
        WindowsUtil::GetWstringFromOemcpString(key, wideKey).IsFailed() ||
        WindowsUtil::GetWstringFromOemcpString(defaultText, wideDefault).IsFailed()) {
        return;
    }
    constexpr DWORD kUnits = 1024;
    wchar_t buffer[kUnits] = {};
    GetPrivateProfileStringW(wideSection.c_str(), wideKey.c_str(), wideDefault.c_str(), buffer, kUnits,
                             wideFile.c_str());
    const std::wstring text(buffer);
    WindowsUtil::GetUtf8StringFromWstring(text, value);
}

}  // namespace velm
