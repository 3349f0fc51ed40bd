#include "velm/platform/SystemInfo.h"

#include <windows.h>
#include <lmcons.h>
#include <winver.h>

#include <iterator>
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

std::string ProcessorName() {
    wchar_t name[256] = L"";
    DWORD size = sizeof name;
    const LSTATUS result =
        RegGetValueW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0",
                     L"ProcessorNameString", RRF_RT_REG_SZ, nullptr, name, &size);
    return result == ERROR_SUCCESS ? Utf8(name) : std::string();
}

unsigned long long PhysicalMemory() {
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) ? status.ullTotalPhys : 0;
}

std::string ClockSource() {
    return "QueryPerformanceCounter";
}

std::vector<Display> Displays() {
    std::vector<Display> displays;
    DISPLAY_DEVICEW device{};
    device.cb = sizeof device;
    for (DWORD i = 0; EnumDisplayDevicesW(nullptr, i, &device, 0); ++i) {
        DEVMODEW mode{};
        mode.dmSize = sizeof mode;
        if ((device.StateFlags & DISPLAY_DEVICE_ATTACHED_TO_DESKTOP) != 0 &&
            EnumDisplaySettingsW(device.DeviceName, ENUM_CURRENT_SETTINGS, &mode)) {
            displays.push_back({Utf8(device.DeviceName), Utf8(device.DeviceString), mode.dmPelsWidth,
                                mode.dmPelsHeight, mode.dmDisplayFrequency,
                                (device.StateFlags & DISPLAY_DEVICE_PRIMARY_DEVICE) != 0});
        }
    }
    return displays;
}

UserIdentity CurrentUser() {
    UserIdentity user;
    wchar_t name[UNLEN + 1];
    const DWORD units = GetEnvironmentVariableW(L"USERNAME", name, UNLEN + 1);
    if (units != 0 && units <= UNLEN) {
        user.names.push_back(Utf8(name));
    }
    wchar_t home[MAX_PATH];
    const DWORD length = GetEnvironmentVariableW(L"USERPROFILE", home, MAX_PATH);
    if (length != 0 && length < MAX_PATH) {
        user.homes.push_back(Utf8(home));
        wchar_t shortHome[MAX_PATH];  // temporary folders are given in this form
        const DWORD shortLength = GetShortPathNameW(home, shortHome, MAX_PATH);
        if (shortLength != 0 && shortLength < MAX_PATH) {
            user.homes.push_back(Utf8(shortHome));
        }
    }
    return user;
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

std::string LoadErrorText(unsigned long code) {
    wchar_t text[512];
    const DWORD units = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                       code, 0, text, static_cast<DWORD>(std::size(text)), nullptr);
    const std::wstring message(text, units);
    return Utf8(message.substr(0, message.find_last_not_of(L" .\r\n") + 1));
}

}  // namespace velm::platform
