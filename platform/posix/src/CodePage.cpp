#include "CodePage.h"

#include <iconv.h>

#include <cerrno>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace velm::posix {

/// One direction of iconv, a character at a time.
class Converter {
public:
    Converter(const std::string& to, const std::string& from)
        : m_iconv(iconv_open(to.c_str(), from.c_str())) {}
    ~Converter() {
        if (IsOpen()) {
            iconv_close(m_iconv);
        }
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool IsOpen() const { return m_iconv != reinterpret_cast<iconv_t>(-1); }

    /// @return the bytes written; 0 when the input stands for nothing (errno is EILSEQ) or for the beginning
    /// of
    ///         something (EINVAL)
    std::size_t Convert(const void* in, std::size_t inSize, void* out, std::size_t outSize) {
        iconv(m_iconv, nullptr, nullptr, nullptr, nullptr);
        auto* next = static_cast<char*>(const_cast<void*>(in));  // iconv does not write there
        auto* to = static_cast<char*>(out);
        std::size_t room = outSize;
        return iconv(m_iconv, &next, &inSize, &to, &room) == static_cast<std::size_t>(-1) ? 0
                                                                                          : outSize - room;
    }

private:
    iconv_t m_iconv;
};

namespace {

// What a character becomes that a code page lacks, before it becomes "?": letters lose their accents.
// Double-byte code pages do so only below U+0100.
constexpr char16_t kFirstLetter = 0x00C0;
constexpr std::string_view kLetters =
    "AAAAAA CEEEEIIII NOOOOO OUUUUY  aaaaaa ceeeeiiii nooooo ouuuuy y"  // U+00C0
    "AaAaAaCcCcCcCcDdDdEeEeEeEeEeGgGgGgGgHhHhIiIiIiIiI   JjKk LlLlLl "  // U+0100
    " LlNnNnNn   OoOoOo  RrRrRrSsSsSsSsTtTtTtUuUuUuUuUuUuWwYyYZzZzZz ";

// Full-width forms of ASCII.
constexpr char16_t kFirstFullWidth = 0xFF01;
constexpr char16_t kLastFullWidth = 0xFF5E;

char LookAlike(char16_t unit, bool doubleByte) {
    if (unit >= kFirstFullWidth && unit <= kLastFullWidth) {
        return static_cast<char>(unit - kFirstFullWidth + '!');
    }
    if (unit < kFirstLetter || unit - kFirstLetter >= static_cast<int>(kLetters.size()) ||
        (doubleByte && unit > 0xFF)) {
        return '?';
    }
    const char letter = kLetters[static_cast<std::size_t>(unit - kFirstLetter)];
    return letter == ' ' ? '?' : letter;
}

}  // namespace

const CodePage* CodePage::Find(UINT number) {
    static std::mutex mutex;
    static std::map<UINT, std::unique_ptr<CodePage>> known;
    const std::lock_guard lock(mutex);
    std::unique_ptr<CodePage>& page = known[number];
    if (page == nullptr) {
        page.reset(new CodePage(number));
        if (!page->Load(number)) {
            page.reset();
        }
    }
    return page.get();
}

char16_t CodePage::Take(const unsigned char*& next, const unsigned char* end) const {
    const unsigned char first = *next++;
    if (m_single[first] != kLead) {
        return m_single[first];
    }
    if (next == end || *next == 0) {
        return m_replacement;
    }
    return m_pairs[static_cast<std::size_t>(first << 8 | *next++)];
}

unsigned int CodePage::BytesOf(char16_t unit) const {
    if (m_bytes[unit] != 0 || unit == 0) {
        return m_bytes[unit];
    }
    return static_cast<unsigned char>(LookAlike(unit, !m_pairs.empty()));
}

bool CodePage::Load(UINT number) {
    const std::string name = "CP" + std::to_string(number);
    Converter decoder("UTF-16LE", name);
    Converter encoder(name, "UTF-16LE");
    if (!decoder.IsOpen() || !encoder.IsOpen()) {
        return false;
    }
    m_bytes.resize(0x10000);
    for (unsigned int i = 0; i < m_single.size(); ++i) {
        const auto byte = static_cast<unsigned char>(i);
        if (decoder.Convert(&byte, 1, &m_single[i], sizeof m_single[i]) != 0) {
            LoadBytes(encoder, m_single[i], i);
        } else if (errno == EINVAL) {
            m_single[i] = kLead;
            LoadPairs(decoder, byte);
        } else {
            m_single[i] = UnmappedByte(number, byte);
            LoadBytes(encoder, m_single[i], i);
        }
    }
    for (unsigned int i = 0; i < m_pairs.size(); ++i) {
        if (m_pairs[i] != m_replacement) {
            LoadBytes(encoder, m_pairs[i], i);
        }
    }
    return true;
}

void CodePage::LoadPairs(Converter& decoder, unsigned char lead) {
    m_pairs.resize(0x10000, m_replacement);
    for (unsigned int i = 0; i < 256; ++i) {
        const unsigned char bytes[] = {lead, static_cast<unsigned char>(i)};
        char16_t unit = 0;
        if (decoder.Convert(bytes, sizeof bytes, &unit, sizeof unit) != 0) {
            m_pairs[lead * 256U + i] = unit;
        }
    }
}

/// Of several forms of a character iconv picks the one; of a character that it does not know, there is one.
void CodePage::LoadBytes(Converter& encoder, char16_t unit, unsigned int bytes) {
    unsigned char form[2] = {};
    switch (encoder.Convert(&unit, sizeof unit, form, sizeof form)) {
        case 1:
            m_bytes[unit] = form[0];
            break;
        case 2:
            m_bytes[unit] = static_cast<char16_t>(form[0] << 8 | form[1]);
            break;
        default:
            m_bytes[unit] = static_cast<char16_t>(bytes);
    }
}

/// Bytes that a code page leaves open stand for the control character of their number, but for some in the
/// Japanese one.
char16_t CodePage::UnmappedByte(UINT number, unsigned char byte) const {
    if (number == 932 && byte == 0xA0) {
        return 0xF8F0;
    }
    if (number == 932 && byte >= 0xFD) {
        return static_cast<char16_t>(0xF8F1 + byte - 0xFD);
    }
    return byte;
}

}  // namespace velm::posix
