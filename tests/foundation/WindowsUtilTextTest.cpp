#include <gtest/gtest.h>

#include <memory>

#include "velm/WindowsUtil.h"

namespace velm::windows_util_text_test {

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

constexpr unsigned int kOem = 1;  // code page 437 under Wine and on Linux
constexpr unsigned int kUtf8 = 65001;

using namespace std::string_literals;

struct Conversion {
    unsigned int codePage;
    std::string text;
    std::wstring wide;
};

void ExpectDecoded(const Conversion& row) {
    std::wstring out = L"old";
    EXPECT_EQ(DecodeFunction()(row.codePage, row.text, out), 0U);
    EXPECT_EQ(out, row.wide) << row.codePage << ": " << testing::PrintToString(row.text);
}

void ExpectEncoded(const Conversion& row) {
    std::string out = "old";
    EXPECT_EQ(EncodeFunction()(row.wide, row.codePage, out), 0U);
    EXPECT_EQ(out, row.text) << row.codePage << ": " << testing::PrintToString(row.text);
}

TEST(WindowsUtilText, RoundTripsEveryEncoding) {
    for (const Conversion& row :
         {Conversion{kUtf8, "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF", L"\x7F\x80\x7FF\x800\xFFFF"},
          {kUtf8, "\xEF\xBB\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\xFEFF\xD800\xDC00\xDBFF\xDFFF"},
          {kOem, "\x01\x1A\x7F\x80 \x82\x9C\xE0\xFF", L"\x01\x1A\x7F\xC7 \xE9\xA3\x3B1\xA0"},
          {866, "\x8F\xE0\xA8", L"\x41F\x440\x438"},
          {932, "\x82\xA0\xB1\\~\x81\x5F", L"\x3042\xFF71\\~\xFF3C"}}) {
        ExpectDecoded(row);
        ExpectEncoded(row);
    }
    for (const std::size_t size :
         {0U, 511U, 512U, 1U << 20}) {  // the stack buffer holds 511 units and the NUL
        ExpectDecoded({kUtf8, std::string(size, 'x'), std::wstring(size, L'x')});
        ExpectEncoded({kUtf8, std::string(size, 'x'), std::wstring(size, L'x')});
    }
}

TEST(WindowsUtilText, ReplacesUnmappableCharacters) {
    ExpectDecoded({kUtf8, "\x80\xBF\xFE\xFF\xF5\x80", std::wstring(6, 0xFFFD)});
    ExpectDecoded({kUtf8, "a\xC2", L"a\xFFFD"});
    ExpectEncoded({kUtf8, "\xEF\xBF\xBD\xEF\xBF\xBDz\xEF\xBF\xBD", L"\xDE00\xD83Dz\xD83D"});
    ExpectEncoded({kOem, "??z?", L"\xD83D\xDE00z\x3042"});
}

TEST(WindowsUtilText, EncodesUpToTheFirstNul) {
    ExpectDecoded({kUtf8, "a\0b"s, L"a\0b"s});
    for (std::size_t nul = 0; nul < 20; ++nul) {
        ExpectEncoded(
            {kUtf8, std::string(nul, 'x'), std::wstring(nul, L'x') + L"\0\x1"s + std::wstring(20, L'x')});
    }
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

TEST(WindowsUtilText, AllocatesTheTerminatorAndOneMore) {
    const struct {
        const char* in;
        int inLength;
        std::wstring out;  // empty: an error
    } rows[] = {{"abc", -1, L"abc\0"s}, {"abc", 2, L"ab"}, {"abc", 0, L""}, {nullptr, -1, L""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.inLength);
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

}  // namespace velm::windows_util_text_test
