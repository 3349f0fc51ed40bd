#include <windows.h>

#include "Intercept.h"

namespace velm::posix {
namespace {

struct Context {
    int width;
    int height;
};

std::atomic<unsigned int> g_contexts{0};

}  // namespace

unsigned int OpenDeviceContexts() {
    return g_contexts;
}

}  // namespace velm::posix

using namespace velm::posix;

BOOL EnumDisplayDevicesW(LPCWSTR device, DWORD index, DISPLAY_DEVICEW* displayDevice, DWORD) {
    if (MustFail("EnumDisplayDevicesW")) {
        return FALSE;
    }
    const Locked<Settings> settings;
    if (device != nullptr || index >= settings->displays.size() ||
        displayDevice->cb != sizeof *displayDevice) {
        return FALSE;
    }
    const Display& display = settings->displays[index];
    *displayDevice = {};
    displayDevice->cb = sizeof *displayDevice;
    displayDevice->StateFlags = display.stateFlags;
    display.name.copy(displayDevice->DeviceName, std::size(displayDevice->DeviceName) - 1);
    return TRUE;
}

HDC CreateDCW(LPCWSTR, LPCWSTR device, LPCWSTR, const DEVMODEW*) {
    if (MustFail("CreateDCW")) {
        return nullptr;
    }
    const Locked<Settings> settings;
    for (const Display& display : settings->displays) {
        if (device != nullptr && display.name == device) {
            auto* context = new (std::nothrow) Context{display.width, display.height};
            g_contexts += context != nullptr;
            return reinterpret_cast<HDC>(context);
        }
    }
    return nullptr;
}

BOOL DeleteDC(HDC context) {
    const bool fails = MustFail("DeleteDC");  // deletes the context in any case
    if (context == nullptr) {
        return FALSE;
    }
    --g_contexts;
    delete reinterpret_cast<Context*>(context);
    return !fails;
}

int GetDeviceCaps(HDC handle, int index) {
    if (MustFail("GetDeviceCaps") || handle == nullptr) {
        return 0;
    }
    const auto* context = reinterpret_cast<const Context*>(handle);
    return index == HORZRES ? context->width : index == VERTRES ? context->height : 0;
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
