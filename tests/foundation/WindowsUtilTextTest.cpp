#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "velm/WindowsUtil.h"

// A system's OEM code page is 437 under Wine and on Linux.
namespace velm {
namespace {

using Decode = ErrorCode (*)(unsigned int, const std::string&, std::wstring&);
using Encode = ErrorCode (*)(const std::wstring&, unsigned int, std::string&);
using Convert = bool (*)(unsigned int, wchar_t**, int*, const char*, int);

// An explicit instantiation may name private members.
Decode DecodeFunction();
Encode EncodeFunction();
Convert ConvertFunction();
template <Decode kDecode, Encode kEncode, Convert kConvert>
struct Private {
    friend Decode DecodeFunction() { return kDecode; }
    friend Encode EncodeFunction() { return kEncode; }
    friend Convert ConvertFunction() { return kConvert; }
};
template struct Private<&WindowsUtil::GetWstringFromString, &WindowsUtil::GetStringFromWstring,
                        &WindowsUtil::ConvertToWideChar>;

constexpr unsigned int kUtf8 = 65001;

using namespace std::string_literals;

TEST(WindowsUtilText, DecodesEveryByteAsTheSystemDoes) {
    const struct {
        unsigned int codePage;
        std::string in;
        std::wstring out;
    } rows[] = {
        {kUtf8, "", L""},
        {kUtf8, std::string(1 << 20, 'x'), std::wstring(1 << 20, L'x')},
        {kUtf8, "a\0b"s, L"a\0b"s},
        {kUtf8, "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF", L"\x7F\x80\x7FF\x800\xFFFF"},
        {kUtf8, "\xEF\xBB\xBF\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBE", L"\xFEFF\xD7FF\xE000\xFFFE"},
        {kUtf8, "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\xD800\xDC00\xDBFF\xDFFF"},
        // no lead bytes
        {kUtf8, "\x80\xBF\xFE\xFF\xF5\x80", std::wstring(6, 0xFFFD)},
        {kUtf8, "a\xC2", L"a\xFFFD"},
        {1, "caf\x82 \x9C\xE0\0\xFF"s, L"caf\xE9 \xA3\x3B1\0\xA0"s},
        {437, "\x01\x1A\x7F\x80", L"\x01\x1A\x7F\xC7"},
        {866, "\x8F\xE0\xA8", L"\x41F\x440\x438"},
        {932, "\xFA\x40\xED\x40\xF0\x40", L"\x2170\x7E8A\xE000"},
#ifdef _WIN32  // how many replacements, and which: Windows' own, as Wine 8 has it
        {kUtf8, "\xC0\x80\xC1\xBF\xE0\x80\x80\xE0\x9F\xBF", std::wstring(8, 0xFFFD)},
        {kUtf8, "\xF0\x80\x80\x80\xF0\x8F\xBF\xBF", std::wstring(6, 0xFFFD)},
        {kUtf8, "\xED\xA0\xBD\xED\xB8\x80\xF4\x90\x80\x80", std::wstring(7, 0xFFFD)},
        {kUtf8, "\xC2\x41\xE2\x82\x41\xF0\x9F\x98\x41z", L"\xFFFD\x41\xFFFD\x41\xFFFD\x41z"},
        {kUtf8, "\xC2\xC2\xA9\xE2\x82\xE2\x82\xAC", L"\xFFFD\xA9\xFFFD\x20AC"},
        {kUtf8, "\xE2\x82\0z"s, L"\xFFFD\0z"s},
        {kUtf8, "\xF1\x80\x80\xC0", L"\xFFFD\xFFFD"},
        {kUtf8, "a\xE2\x82", L"a\xFFFD"},
        {kUtf8, "a\xF0\x9F\x98", L"a\xFFFD"},
        {kUtf8, "\xE2\x41", L"\xFFFD"},
        {kUtf8, "\xF0\x41", L"\xFFFD"},
        {1252, "\x80\x81\x9F", L"\x20AC\x81\x178"},
        {932, "\x82\xA0\xB1\\~\x81\x5F\x81\x60\x80\xA0\xFD\xFF",
         L"\x3042\xFF71\\~\xFF3C\xFF5E\x80\xF8F0\xF8F1\xF8F3"},
        {932, "\x85\x40\x81\x20\x81\xFFz", L"\x30FB\x30FB\x30FBz"},
        {932, "a\x81", L"a\x30FB"},
        {932, "\x81\0x"s, L"\x30FB\0x"s},
        {932, "\x81\x81\x81", L"\xFF1D\x30FB"},
#endif
    };
    for (const auto& row : rows) {
        std::wstring out = L"old";
        EXPECT_EQ(DecodeFunction()(row.codePage, row.in, out), 0U);
        EXPECT_EQ(out, row.out) << row.codePage << ": " << testing::PrintToString(row.in);
    }
}

TEST(WindowsUtilText, EncodesEveryUnitAsTheSystemDoes) {
    const struct {
        unsigned int codePage;
        std::wstring in;
        std::string out;
    } rows[] = {
        {kUtf8, L"", ""},
        {kUtf8, std::wstring(1 << 20, L'x'), std::string(1 << 20, 'x')},
        {kUtf8, L"ab\0cd"s, "ab"},
        {kUtf8, L"\x7F\x80\x7FF\x800\xFFFF", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
        {kUtf8, L"\xD83D\xDE00\xDBFF\xDFFF", "\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF"},
        // unpaired surrogates: alone, in the wrong order, before a pair, at the end
        {kUtf8, L"\xDE00\xD83Dz", "\xEF\xBF\xBD\xEF\xBF\xBDz"},
        {kUtf8, L"\xD83D\xD83D\xDE00", "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
        {kUtf8, L"a\xD83D", "a\xEF\xBF\xBD"},
        {1, L"\xE9\xA3\x3B1\x20AC", "\x82\x9C\xE0?"},
        {1, L"\xD83D\xDE00z\xD83D", "??z?"},
        {437, L"\x3042\x416\xFFFF\xFEFF", "????"},
        {932, L"\x3042\xFF71\\~\xFF3C\xFF5E", "\x82\xA0\xB1\\~\x81\x5F\x81\x60"},
#ifdef _WIN32  // the nearest character, as Wine 8 has it
        {437, L"\x101\x160\x141\xC3\xFF21\xFF01", "aSLAA!"},
        {866, L"\x416\xE9\xFF\x101\xDF", "\x86"s + "eya?"},
        {932, L"\xE9\xF8\x101\xAC00\x80\xF8F0\x2252", "eo??\x80\xA0\x81\xE0"},
#endif
    };
    for (const auto& row : rows) {
        std::string out = "old";
        EXPECT_EQ(EncodeFunction()(row.in, row.codePage, out), 0U);
        EXPECT_EQ(out, row.out) << row.codePage << ": " << testing::PrintToString(row.in);
    }
}

TEST(WindowsUtilText, ChainedAndPlatformTextFormsAgreeWithTheirParts) {
    std::string out = "old";
    EXPECT_EQ(WindowsUtil::GetOemcpStringFromUtf8String("\xC3\xA9\0x"s, out), 0U);
    EXPECT_EQ(out, "\x82");
    EXPECT_EQ(WindowsUtil::GetUtf8StringFromOemcpString("\x82\0x"s, out), 0U);
    EXPECT_EQ(out, "\xC3\xA9");
    EXPECT_EQ(WindowsUtil::GetUtf8StringFromTstring(L"\xE9\0x"s, out), 0U);
    EXPECT_EQ(out, "\x82") << "platform text goes to the OEM code page";
    std::wstring wide = L"old";
    EXPECT_EQ(WindowsUtil::GetWStringFromTstring(L"ab\0cd"s, wide), 0U);
    EXPECT_EQ(wide, L"ab");
}

TEST(WindowsUtilText, NewBufferHasTheTerminatorAndOneMore) {
    const struct {
        const char* in;
        int inLength;
        std::wstring out;  // none: refused
    } rows[] = {{"abc", -1, L"abc\0"s}, {"abc", 2, L"ab"}, {"abc", 0, L""}, {nullptr, -1, L""}};
    for (const auto& row : rows) {
        auto* out = reinterpret_cast<wchar_t*>(1);
        int length = -1;
        EXPECT_EQ(ConvertFunction()(kUtf8, &out, &length, row.in, row.inLength), !row.out.empty());
        const std::unique_ptr<wchar_t[]> guard(out);
        ASSERT_EQ(out == nullptr, row.out.empty());
        EXPECT_EQ(length, static_cast<int>(row.out.size()));
        if (out != nullptr) {
            EXPECT_EQ(std::wstring(out, row.out.size() + 1), row.out + L'\0');
        }
    }
    wchar_t* out = nullptr;
    EXPECT_TRUE(ConvertFunction()(kUtf8, &out, nullptr, "a", 1));
    delete[] out;
}

}  // namespace
}  // namespace velm
