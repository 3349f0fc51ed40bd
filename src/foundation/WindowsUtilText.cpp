#include "velm/WindowsUtil.h"

#include <windows.h>

#include <climits>
#include <cstring>
#include <memory>
#include <new>

#include "velm/core/PathHelper.h"

namespace velm {
namespace {

/// Bytes converted on the stack: enough for most names and paths.
constexpr int kSmallText = 512;

/// strlen for a buffer of `size` bytes. Skips eight bytes at a time; some C runtimes look at one at a time,
/// which takes a tenth as long as the conversion.
std::size_t LengthOf(const char* text, std::size_t size) {
    constexpr unsigned long long kOnes = 0x0101010101010101;
    std::size_t length = 0;
    for (unsigned long long word = 0; size - length >= sizeof word; length += sizeof word) {
        std::memcpy(&word, text + length, sizeof word);
        if (((word - kOnes) & ~word & kOnes << 7) != 0) {  // one of the bytes is 0
            break;
        }
    }
    return length + std::strlen(text + length);
}

}  // namespace

ErrorCode WindowsUtil::GetWstringFromString(unsigned int codePage, const std::string& in, std::wstring& out) {
    return PathHelper::GetWstringFromString(codePage, in, out);
}

ErrorCode WindowsUtil::GetWstringFromUtf8String(const std::string& in, std::wstring& out) {
    return PathHelper::GetWstringFromUtf8String(in, out);
}

ErrorCode WindowsUtil::GetWstringFromOemcpString(const std::string& in, std::wstring& out) {
    return PathHelper::GetWstringFromOemcpString(in, out);
}

ErrorCode WindowsUtil::GetStringFromWstring(const std::wstring& in, unsigned int codePage, std::string& out) {
    if (in.size() >= INT_MAX) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    const int units = static_cast<int>(in.size()) + 1;  // with the NUL
    const int size = WideCharToMultiByte(codePage, 0, in.c_str(), units, nullptr, 0, nullptr, nullptr);
    if (size <= 0) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    try {
        // Plain arrays: resizing a std::string would zero it first.
        char small[kSmallText];
        const std::unique_ptr<char[]> large(size > kSmallText ? new char[static_cast<std::size_t>(size)]
                                                              : nullptr);
        char* const text = large != nullptr ? large.get() : small;
        if (WideCharToMultiByte(codePage, 0, in.c_str(), units, text, size, nullptr, nullptr) == 0) {
            return VELM_ERROR_UTIL_INVALID_PARAM;
        }
        out.assign(text, LengthOf(text, static_cast<std::size_t>(size)));
        return 0;
    } catch (const std::bad_alloc&) {
        return VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    }
}

ErrorCode WindowsUtil::GetUtf8StringFromWstring(const std::wstring& in, std::string& out) {
    return GetStringFromWstring(in, CP_UTF8, out);
}

ErrorCode WindowsUtil::GetOemcpStringFromWstring(const std::wstring& in, std::string& out) {
    return GetStringFromWstring(in, CP_OEMCP, out);
}

ErrorCode WindowsUtil::GetOemcpStringFromUtf8String(const std::string& in, std::string& out) {
    std::wstring wide;
    const ErrorCode result = GetWstringFromUtf8String(in, wide);
    return result.IsFailed() ? result : GetOemcpStringFromWstring(wide, out);
}

ErrorCode WindowsUtil::GetUtf8StringFromOemcpString(const std::string& in, std::string& out) {
    std::wstring wide;
    const ErrorCode result = GetWstringFromOemcpString(in, wide);
    return result.IsFailed() ? result : GetUtf8StringFromWstring(wide, out);
}

ErrorCode WindowsUtil::GetUtf8StringFromTstring(const std::wstring& in, std::string& out) {
    return GetOemcpStringFromWstring(in, out);
}

ErrorCode WindowsUtil::GetWStringFromTstring(const std::wstring& in, std::wstring& out) {
    try {
        out.assign(in.c_str());
        return 0;
    } catch (const std::bad_alloc&) {
        return VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    }
}

bool WindowsUtil::ConvertToWideChar(unsigned int codePage, wchar_t** out, int* outLength, const char* in,
                                    int inLength) {
    *out = nullptr;
    if (outLength != nullptr) {
        *outLength = 0;
    }
    const int count = MultiByteToWideChar(codePage, 0, in, inLength, nullptr, 0);
    if (count <= 0) {
        return false;
    }
    const auto units = static_cast<std::size_t>(count);
    std::unique_ptr<wchar_t[]> buffer(new (std::nothrow) wchar_t[units + 1]);
    if (buffer == nullptr) {
        return false;
    }
    buffer[units] = L'\0';
    if (MultiByteToWideChar(codePage, 0, in, inLength, buffer.get(), count) <= 0) {
        return false;
    }
    *out = buffer.release();
    if (outLength != nullptr) {
        *outLength = count;
    }
    return true;
}

}  // namespace velm
