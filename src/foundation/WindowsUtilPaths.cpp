#include "velm/WindowsUtil.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>

#include "velm/core/PathHelper.h"

namespace velm {
namespace {

constexpr char kSeparator = '\\';
constexpr char kResourcesDir[] = "resources\\";
constexpr DWORD kMaxDisplays = 16;

struct ContextDeleter {
    void operator()(HDC context) const { DeleteDC(context); }
};
using UniqueContext = std::unique_ptr<std::remove_pointer_t<HDC>, ContextDeleter>;

/// Gets the folder of the executable.
/// @param directory  out: MAX_PATH bytes
ErrorCode GetExecDir(char* directory) {
    wchar_t wide[MAX_PATH];
    const DWORD units = GetModuleFileNameW(nullptr, wide, MAX_PATH);
    if (units == 0) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    char path[MAX_PATH];
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, wide, static_cast<int>(units), path, MAX_PATH, nullptr, nullptr);
    if (size <= 0) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    path[std::min(size, MAX_PATH - 1)] = '\0';
    return PathHelper::GetFileDir(directory, MAX_PATH, path);
}

/// Joins the executable's folder, a separator, `folder` and `fileName`, which may refer to `path` itself.
ErrorCode GetPathBelowExecDir(std::string& path, const char* folder, std::string_view fileName) {
    char directory[MAX_PATH];
    const ErrorCode result = GetExecDir(directory);
    if (result.IsFailed()) {
        return result;
    }
    try {
        std::string full = directory;
        full.append(1, kSeparator).append(folder).append(fileName);
        path = std::move(full);
        return 0;
    } catch (const std::bad_alloc&) {
        return VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    }
}

bool Matches(const DISPLAY_DEVICEW& device, unsigned long stateFlags) {
    const unsigned long wanted = stateFlags | DISPLAY_DEVICE_ATTACHED_TO_DESKTOP;
    return (device.StateFlags & wanted) == wanted;
}

}  // namespace

ErrorCode WindowsUtil::GetFullPathForExecDirFile(std::string& path, const std::string& fileName) {
    return GetPathBelowExecDir(path, "", fileName);
}

ErrorCode WindowsUtil::GetFullPathForExecDirFile(char* buffer, std::size_t size, const char* fileName) {
    if (buffer == nullptr || size == 0 || fileName == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    std::string path;
    const ErrorCode result = GetPathBelowExecDir(path, "", fileName);
    if (result.IsFailed()) {
        return result;
    }
    if (path.size() >= size) {
        return VELM_ERROR_UTIL_DATA_LENGTH;
    }
    std::memcpy(buffer, path.c_str(), path.size() + 1);
    return 0;
}

ErrorCode WindowsUtil::GetFullPathForResourcesDir(std::string& path) {
    return GetPathBelowExecDir(path, kResourcesDir, "");
}

ErrorCode WindowsUtil::GetFullPathForResourcesDirFile(std::string& path, const std::string& fileName) {
    return GetPathBelowExecDir(path, kResourcesDir, fileName);
}

ErrorCode WindowsUtil::GetMaxScreenSize(int* width, int* height, unsigned long stateFlags) {
    if (width == nullptr || height == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    int maxWidth = 0;
    int maxHeight = 0;
    DISPLAY_DEVICEW device{};
    device.cb = sizeof device;
    for (DWORD i = 0; i < kMaxDisplays && EnumDisplayDevicesW(nullptr, i, &device, 0); ++i) {
        if (!Matches(device, stateFlags)) {
            continue;
        }
        const UniqueContext context(CreateDCW(device.DeviceName, device.DeviceName, nullptr, nullptr));
        if (context != nullptr) {
            maxWidth = std::max(maxWidth, GetDeviceCaps(context.get(), HORZRES));
            maxHeight = std::max(maxHeight, GetDeviceCaps(context.get(), VERTRES));
        }
    }
    *width = maxWidth;
    *height = maxHeight;
    return 0;
}

}  // namespace velm
