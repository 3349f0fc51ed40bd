// Converts the input between all encodings. The result of a conversion is well formed: it survives a round
// trip.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "velm/WindowsUtil.h"

namespace {

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

bool Done(velm::ErrorCode result) {
    return !result.IsFailed();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using velm::WindowsUtil;
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::wstring wide;
    std::wstring again;
    std::string utf8;
    std::string oem;

    Require(Done(WindowsUtil::GetWstringFromUtf8String(text, wide)));
    Require(Done(WindowsUtil::GetUtf8StringFromWstring(wide, utf8)));
    Require(Done(WindowsUtil::GetWstringFromUtf8String(utf8, again)));
    Require(again == wide.substr(0, wide.find(L'\0')));

    Require(Done(WindowsUtil::GetUtf8StringFromOemcpString(text, utf8)));
    Require(Done(WindowsUtil::GetOemcpStringFromUtf8String(utf8, oem)));
    Require(oem == text.c_str());  // code page 437 maps every byte to a different character

    std::wstring units(size / 2, L'\0');
    for (std::size_t i = 0; i < units.size(); ++i) {
        units[i] = static_cast<wchar_t>(data[2 * i] | data[2 * i + 1] << 8);
    }
    Require(Done(WindowsUtil::GetUtf8StringFromWstring(units, utf8)));
    Require(Done(WindowsUtil::GetOemcpStringFromWstring(units, oem)));
    Require(Done(WindowsUtil::GetWStringFromTstring(units, wide)));
    Require(wide == units.c_str() && oem.size() == wide.size());
    return 0;
}
