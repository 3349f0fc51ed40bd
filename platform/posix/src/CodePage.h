#pragma once

#include <windows.h>

#include <array>
#include <vector>

namespace velm::posix {

/// A single- or double-byte code page, as the C library's iconv knows it.
class CodePage {
public:
    /// @return the code page, which lives as long as the process; null when there is none of that number
    static const CodePage* Find(UINT number);

    /// Takes one character off a text that is not empty. A pair of bytes that stands for nothing is the code
    /// page's replacement; so is a lead byte that the text or a NUL ends.
    char16_t Take(const unsigned char*& next, const unsigned char* end) const;

    /// The one or two bytes, the lead byte above the other, of a UTF-16 unit: its own, a look-alike's, or
    /// "?".
    unsigned int BytesOf(char16_t unit) const;

private:
    explicit CodePage(UINT number) : m_replacement(number == 932 ? u'\u30FB' : u'?') {}
    bool Load(UINT number);
    void LoadPairs(class Converter& decoder, unsigned char lead);
    void LoadBytes(class Converter& encoder, char16_t unit, unsigned int bytes);
    char16_t UnmappedByte(UINT number, unsigned char byte) const;

    static constexpr char16_t kLead = 0xFFFF;

    char16_t m_replacement;
    std::array<char16_t, 256> m_single{};  // of a byte; kLead for one that begins a pair
    std::vector<char16_t> m_pairs;         // of a pair of bytes; empty in a single-byte code page
    std::vector<char16_t> m_bytes;         // of a UTF-16 unit; 0 where it has none
};

}  // namespace velm::posix
