#include <windows.h>

#include <cwchar>
#include <memory>
#include <mutex>
#include <set>

#include "Intercept.h"

namespace velm::posix {
namespace {

struct Context {
    int width;
    int height;
};

struct Devices {
    std::mutex mutex;
    std::vector<Display> displays;
    std::set<const Context*> contexts;
};

Devices& TheDevices() {
    static Devices& devices = *new Devices;  // for good: libraries call in as they are unloaded
    return devices;
}

const Context* ToContext(HDC handle) {
    return reinterpret_cast<const Context*>(handle);
}

}  // namespace

void SetDisplays(std::vector<Display> displays) {
    const std::lock_guard lock(TheDevices().mutex);
    TheDevices().displays = std::move(displays);
}

unsigned int OpenDeviceContexts() {
    const std::lock_guard lock(TheDevices().mutex);
    return static_cast<unsigned int>(TheDevices().contexts.size());
}

void ResetDisplays() {
    SetDisplays({});
}

}  // namespace velm::posix

using namespace velm::posix;

BOOL EnumDisplayDevicesW(LPCWSTR device, DWORD index, DISPLAY_DEVICEW* displayDevice, DWORD) {
    if (MustFail("EnumDisplayDevicesW")) {
        return FALSE;
    }
    const std::lock_guard lock(TheDevices().mutex);
    const auto& displays = TheDevices().displays;
    if (device != nullptr || index >= displays.size() || displayDevice->cb != sizeof *displayDevice) {
        return FALSE;
    }
    *displayDevice = {};
    displayDevice->cb = sizeof *displayDevice;
    displayDevice->StateFlags = displays[index].stateFlags;
    displays[index].name.copy(displayDevice->DeviceName, std::size(displayDevice->DeviceName) - 1);
    return TRUE;
}

HDC CreateDCW(LPCWSTR, LPCWSTR device, LPCWSTR, const DEVMODEW*) {
    if (MustFail("CreateDCW")) {
        return nullptr;
    }
    const std::lock_guard lock(TheDevices().mutex);
    for (const Display& display : TheDevices().displays) {
        if (device != nullptr && display.name == device) {
            return WithinSystem(HDC{}, [&] {
                auto context = std::make_unique<Context>(Context{display.width, display.height});
                TheDevices().contexts.insert(context.get());
                return reinterpret_cast<HDC>(context.release());
            });
        }
    }
    return nullptr;
}

BOOL DeleteDC(HDC handle) {
    const bool fails = MustFail("DeleteDC");  // it is gone all the same
    const std::lock_guard lock(TheDevices().mutex);
    if (TheDevices().contexts.erase(ToContext(handle)) == 0) {
        return FALSE;
    }
    delete ToContext(handle);
    return !fails;
}

int GetDeviceCaps(HDC handle, int index) {
    if (MustFail("GetDeviceCaps")) {
        return 0;
    }
    const std::lock_guard lock(TheDevices().mutex);
    if (TheDevices().contexts.count(ToContext(handle)) == 0) {
        return 0;
    }
    const Context& context = *ToContext(handle);
    return index == HORZRES ? context.width : index == VERTRES ? context.height : 0;
}

BOOL TextOutW(HDC, int x, int y, LPCWSTR text, int units) {
    if (MustFail("TextOutW")) {
        return FALSE;
    }
    if (text == nullptr || units < 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return WithinSystem(FALSE, [&] {
        RecordShown({"TextOutW", {std::wstring(text, static_cast<std::size_t>(units))}, {x, y}});
        return TRUE;
    });
}
