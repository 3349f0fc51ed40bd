#include "velm/core/PathHelper.h"

#include <windows.h>

#include <climits>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#include "velm/core/CoreErrorCode.h"

namespace velm {
namespace {

/// UTF-16 units converted on the stack: enough for most names and paths.
constexpr int kSmallText = 512;

}  // namespace

ErrorCode PathHelper::GetFileDir(char* out, std::size_t outSize, const char* path) {
    if (out == nullptr || outSize == 0 || path == nullptr) {
        return VELM_ERROR_CORE_INVALID_PARAM;
    }
    const std::string_view text(path);
    const std::size_t separator = text.find_last_of("\\/");
    const std::string_view directory = separator == text.npos
                                           ? std::string_view(".")
                                           : text.substr(0, text.find_last_not_of("\\/", separator) + 1);
    if (directory.size() >= outSize) {
        return VELM_ERROR_CORE_DATA_LENGTH;
    }
    std::memcpy(out, directory.data(), directory.size());
    out[directory.size()] = '\0';
    return 0;
}

ErrorCode PathHelper::GetWstringFromString(unsigned int codePage, const std::string& in, std::wstring& out) {
    if (in.size() > INT_MAX) {
        return VELM_ERROR_CORE_INVALID_PARAM;
    }
    try {
        if (in.empty()) {
            out.clear();
            return 0;
        }
        const int size = static_cast<int>(in.size());
        const int units = MultiByteToWideChar(codePage, 0, in.data(), size, nullptr, 0);
        if (units <= 0) {
            return VELM_ERROR_CORE_INVALID_PARAM;
        }
        // Plain arrays: resizing a std::wstring would zero it first.
        wchar_t small[kSmallText];
        const std::unique_ptr<wchar_t[]> large(
            units > kSmallText ? new wchar_t[static_cast<std::size_t>(units)] : nullptr);
        wchar_t* const wide = large != nullptr ? large.get() : small;
        if (MultiByteToWideChar(codePage, 0, in.data(), size, wide, units) != units) {
            return VELM_ERROR_CORE_INVALID_PARAM;
        }
        out.assign(wide, static_cast<std::size_t>(units));
        return 0;
    } catch (const std::bad_alloc&) {
        return VELM_ERROR_CORE_NOT_ENOUGH_MEMORY;
    }
}

ErrorCode PathHelper::GetWstringFromUtf8String(const std::string& in, std::wstring& out) {
    return GetWstringFromString(CP_UTF8, in, out);
}

ErrorCode PathHelper::GetWstringFromOemcpString(const std::string& in, std::wstring& out) {
    return GetWstringFromString(CP_OEMCP, in, out);
}

}  // namespace velm
