#include "velm/platform/SystemInfo.h"

#include <windows.h>
#include <winver.h>

#include <vector>

namespace velm::platform {
namespace {

template <typename Function>
Function Find(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name)));
}

std::string Utf8(const std::wstring& text) {
    const int units = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), units, utf8.data(), size, nullptr, nullptr);
    return utf8;
}

std::string FileVersion(const wchar_t* path) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(path, &ignored);
    std::vector<unsigned char> block(size);
    VS_FIXEDFILEINFO* info = nullptr;
    UINT infoSize = 0;
    if (size == 0 || !GetFileVersionInfoW(path, 0, size, block.data()) ||
        !VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&info), &infoSize)) {
        return {};
    }
    return std::to_string(HIWORD(info->dwFileVersionMS)) + '.' +
           std::to_string(LOWORD(info->dwFileVersionMS)) + '.' +
           std::to_string(HIWORD(info->dwFileVersionLS));
}

}  // namespace

std::string SystemName() {
    // Not GetVersionEx, which reports an older Windows to programs without a manifest.
    std::string name = "Windows";
    RTL_OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    const auto getVersion = Find<LONG(WINAPI*)(RTL_OSVERSIONINFOW*)>("RtlGetVersion");
    if (getVersion != nullptr && getVersion(&version) == 0) {
        name += ' ' + std::to_string(version.dwMajorVersion) + '.' + std::to_string(version.dwMinorVersion) +
                '.' + std::to_string(version.dwBuildNumber);
    }
    const auto getWineVersion = Find<const char*(CDECL*)()>("wine_get_version");
    return getWineVersion != nullptr ? name + " (Wine " + getWineVersion() + ')' : name;
}

LibraryFile FindLibrary(const std::string& name) {
    const std::wstring fileName = std::wstring(name.begin(), name.end()) + L".dll";
    wchar_t path[MAX_PATH];
    const HMODULE module = GetModuleHandleW(fileName.c_str());
    const DWORD units = module != nullptr ? GetModuleFileNameW(module, path, MAX_PATH) : 0;
    if (units == 0 || units == MAX_PATH) {
        return {};
    }
    return {Utf8({path, units}), FileVersion(path)};
}

}  // namespace velm::platform
