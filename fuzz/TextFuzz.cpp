// Converts the input between all encodings. The result of a conversion is well formed: it survives a round
// trip.
#include "Fuzz.h"
#include "velm/WindowsUtil.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using velm::WindowsUtil;
    const std::string text = TextOf(data, size);
    std::wstring wide;
    std::wstring again;
    std::string utf8;
    std::string oem;

    VELM_FUZZ_DEMAND(WindowsUtil::GetWstringFromUtf8String(text, wide) == 0U);
    VELM_FUZZ_DEMAND(WindowsUtil::GetUtf8StringFromWstring(wide, utf8) == 0U);
    VELM_FUZZ_DEMAND(WindowsUtil::GetWstringFromUtf8String(utf8, again) == 0U);
    VELM_FUZZ_DEMAND(again == wide.c_str());

    VELM_FUZZ_DEMAND(WindowsUtil::GetUtf8StringFromOemcpString(text, utf8) == 0U);
    VELM_FUZZ_DEMAND(WindowsUtil::GetOemcpStringFromUtf8String(utf8, oem) == 0U);
    VELM_FUZZ_DEMAND(oem == text.c_str());  // code page 437 maps every byte to a different character

    std::wstring units(size / 2, L'\0');
    for (std::size_t i = 0; i < units.size(); ++i) {
        units[i] = static_cast<wchar_t>(data[2 * i] | data[2 * i + 1] << 8);
    }
    VELM_FUZZ_DEMAND(WindowsUtil::GetUtf8StringFromWstring(units, utf8) == 0U);
    VELM_FUZZ_DEMAND(WindowsUtil::GetOemcpStringFromWstring(units, oem) == 0U);
    VELM_FUZZ_DEMAND(WindowsUtil::GetWStringFromTstring(units, wide) == 0U);
    VELM_FUZZ_DEMAND(wide == units.c_str() && oem.size() == wide.size());
    return 0;
}
