#include "Command.h"
#include "SelfTests.h"
#include "velm/core/Tick.h"
#include "velm/WindowsUtil.h"

namespace velmdiag::report {
namespace {

void AppendUtf8(std::string& text, unsigned int code) {
    const auto tail = [&](int shift) { text += static_cast<char>(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | code >> 6);
        tail(0);
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | code >> 12);
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | code >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

struct Characters {
    std::string utf8;
    unsigned int characters = 0;
    std::size_t units = 0;  ///< of UTF-16
};

/// All characters that take one unit of UTF-16, and one in sixteen of those that take two.
Characters MakeCharacters() {
    Characters all;
    // From 1: a NUL ends the text.
    for (unsigned int code = 1; code <= 0x10FFFF; code += code < 0x10000 ? 1 : 16) {
        if (code < 0xD800 || code > 0xDFFF) {
            AppendUtf8(all.utf8, code);
            ++all.characters;
            all.units += code < 0x10000 ? 1 : 2;
        }
    }
    return all;
}

}  // namespace

std::string TestText(SelfTest& test) {
    const Characters all = MakeCharacters();
    std::wstring wide;
    std::string back;
    const unsigned long long start = velm::Tick::Get().GetCount();
    Require(!velm::WindowsUtil::GetWstringFromUtf8String(all.utf8, wide).IsFailed() &&
                !velm::WindowsUtil::GetUtf8StringFromWstring(wide, back).IsFailed(),
            "text cannot be converted");
    AddTime(test.figures, "round_trip", SecondsSince(start) * 1e6);
    AddCount(test.figures, "characters", all.characters);
    AddCount(test.figures, "bytes_of_utf_8", all.utf8.size());
    AddCount(test.figures, "units_of_utf_16", wide.size());
    Require(wide.size() == all.units,
            "UTF-16 has " + Grouped(wide.size()) + " units instead of " + Grouped(all.units));
    Require(back == all.utf8, "text changed in the conversion to UTF-16 and back");

    std::string ascii;
    for (char c = ' '; c <= '~'; ++c) {
        ascii += c;
    }
    std::string oem;
    Require(!velm::WindowsUtil::GetOemcpStringFromUtf8String(ascii, oem).IsFailed() && oem == ascii,
            "ASCII changed in the conversion to the OEM code page");
    return Grouped(all.characters) + " characters of all planes of Unicode survive UTF-8 to UTF-16 and back.";
}

}  // namespace velmdiag::report
