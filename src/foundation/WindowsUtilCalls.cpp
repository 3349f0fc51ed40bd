#include "velm/WindowsUtil.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <climits>
#include <memory>
#include <new>

namespace velm {
namespace {

// Class names have at most 256 units, plus the NUL.
constexpr int kClassNameUnits = 257;

}  // namespace

/// String arguments converted to UTF-16, in order, up to the first one that fails.
template <std::size_t count>
class WindowsUtil::WideTexts {
    /// Preserves the last error of the wrapped call.
    struct QuietDelete {
        void operator()(const wchar_t* buffer) const {
            const DWORD lastError = GetLastError();
            delete[] buffer;
            SetLastError(lastError);
        }
    };

public:
    using Buffer = std::unique_ptr<wchar_t[], QuietDelete>;

    explicit WideTexts(const std::array<const char*, count>& texts) {
        for (std::size_t i = 0; i < count; ++i) {
            wchar_t* wide = nullptr;
            if (!ConvertToWideChar(CP_UTF8, &wide, nullptr, texts[i], -1)) {
                return;
            }
            m_texts[i].reset(wide);
        }
    }

    bool AreConverted() const { return m_texts[count - 1] != nullptr; }
    LPCWSTR operator[](std::size_t index) const { return m_texts[index].get(); }

private:
    std::array<Buffer, count> m_texts;
};

HINSTANCE__* WindowsUtil::CallLoadLibrary(const char* fileName) {
    const WideTexts<1> wide({fileName});
    return wide.AreConverted() ? LoadLibraryW(wide[0]) : nullptr;
}

void* WindowsUtil::CallLoadImage(HINSTANCE__* module, const char* name, unsigned int type, int cx, int cy,
                                 unsigned int loadFlags) {
    const WideTexts<1> wide({name});
    return wide.AreConverted() ? LoadImageW(module, wide[0], type, cx, cy, loadFlags) : nullptr;
}

void WindowsUtil::CallOutputDebugString(const char* text) {
    const WideTexts<1> wide({text});
    if (wide.AreConverted()) {
        OutputDebugStringW(wide[0]);
    }
}

int WindowsUtil::CallMessageBox(HWND__* window, const char* text, const char* caption, unsigned int type) {
    const WideTexts<2> wide({text, caption});
    return wide.AreConverted() ? MessageBoxW(window, wide[0], wide[1], type) : 0;
}

int WindowsUtil::CallGetClassName(HWND__* window, char* buffer, int size) {
    if (size <= 0) {
        return 0;
    }
    const int capacity = std::min(size, kClassNameUnits);
    const WideTexts<1>::Buffer name(new (std::nothrow) wchar_t[static_cast<std::size_t>(capacity)]);
    if (name == nullptr) {
        return 0;
    }
    const int units = GetClassNameW(window, name.get(), capacity);
    if (units <= 0) {
        return 0;
    }
    return WideCharToMultiByte(CP_UTF8, 0, name.get(), units, buffer, size, nullptr, nullptr);
}

unsigned long WindowsUtil::CallGetPrivateProfileString(const char* section, const char* key,
                                                       const char* defaultText, wchar_t* buffer,
                                                       unsigned long size, const char* fileName) {
    const WideTexts<4> wide({section, key, defaultText, fileName});
    return wide.AreConverted() ? GetPrivateProfileStringW(wide[0], wide[1], wide[2], buffer,
                                                          static_cast<DWORD>(size), wide[3])
                               : 0;
}

unsigned int WindowsUtil::CallGetPrivateProfileInt(const char* section, const char* key, int defaultValue,
                                                   const char* fileName) {
    const WideTexts<3> wide({section, key, fileName});
    return wide.AreConverted() ? GetPrivateProfileIntW(wide[0], wide[1], defaultValue, wide[2])
                               : static_cast<unsigned int>(std::max(defaultValue, 0));
}

int WindowsUtil::CallTextOut(HDC__* context, int x, int y, const char* text, int count) {
    const WideTexts<1> wide({text});
    return wide.AreConverted() ? TextOutW(context, x, y, wide[0], count) : 0;
}

int WindowsUtil::CallSetWindowText(HWND__* window, const char* text) {
    const WideTexts<1> wide({text});
    return wide.AreConverted() ? SetWindowTextW(window, wide[0]) : 0;
}

unsigned long WindowsUtil::CallGetModuleFileName(HINSTANCE__* module, char* buffer, unsigned long size) {
    if (buffer == nullptr || size == 0) {
        return 0;
    }
    wchar_t path[MAX_PATH];
    const DWORD units = GetModuleFileNameW(module, path, MAX_PATH);
    if (units == 0) {
        return 0;
    }
    const int capacity = static_cast<int>(std::min<unsigned long>(size, INT_MAX));
    const int bytes =
        WideCharToMultiByte(CP_UTF8, 0, path, static_cast<int>(units), buffer, capacity, nullptr, nullptr);
    if (bytes < 1) {
        return 0;
    }
    buffer[std::min(bytes, capacity - 1)] = '\0';
    return static_cast<unsigned long>(bytes);
}

}  // namespace velm
