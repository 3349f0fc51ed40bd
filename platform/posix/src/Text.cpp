#include <windows.h>

#include <climits>
#include <cstring>
#include <cwchar>

#include "CodePage.h"
#include "Intercept.h"
#include "velm/posix/Control.h"

namespace velm::posix {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr UINT kAnsiCodePage = 1252;
constexpr UINT kFirstOemCodePage = 437;

std::atomic<UINT> g_oemCodePage{kFirstOemCodePage};

/// Writes into a buffer of a given size, or only counts when the size is 0.
template <typename Unit>
class Output {
public:
    Output(Unit* out, int size) : m_out(out), m_size(size) {}

    void Put(char32_t unit) {
        if (m_size != 0 && m_count < m_size) {
            m_out[m_count] = static_cast<Unit>(unit);
        }
        ++m_count;
    }

    /// What the call returns.
    int Result() const {
        if ((m_size != 0 && m_count > m_size) || m_count > INT_MAX) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return 0;
        }
        return static_cast<int>(m_count);
    }

private:
    Unit* m_out;
    int m_size;
    long long m_count = 0;
};

bool IsContinuation(unsigned char byte) {
    return (byte & 0xC0U) == 0x80U;
}

/// Whether the first two bytes of a character of three or four leave it neither overlong nor a surrogate nor
/// above U+10FFFF.
bool CanBegin(char32_t bits, int more) {
    switch (more) {
        case 2:
            return bits >= 0x800 >> 6 && (bits < 0xD800 >> 6 || bits > 0xDFFF >> 6);
        case 3:
            return bits >= 0x10000 >> 12 && bits <= 0x10FFFF >> 12;
        default:
            return true;
    }
}

/// Takes one character off the text. As in Wine, a malformed sequence counts as one replacement character and
/// reaches to the end of the text, when its lead byte announces more than there is; to the first byte that
/// continues no character; or to the end of its second byte, when no character begins with those two.
char32_t TakeUtf8(const unsigned char*& next, const unsigned char* end) {
    const unsigned char lead = *next++;
    if (lead < 0x80) {
        return lead;
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return kReplacement;
    }
    const int more = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    if (end - next < more) {
        next = end;
        return kReplacement;
    }
    char32_t value = lead & (0x3FU >> more);
    for (int i = 0; i < more; ++i) {
        if (!IsContinuation(*next)) {
            return kReplacement;
        }
        value = value << 6 | (*next++ & 0x3FU);
        if (i == 0 && !CanBegin(value, more)) {
            return kReplacement;
        }
    }
    return value;
}

void PutUtf16(Output<wchar_t>& out, char32_t character) {
    if (character < 0x10000) {
        out.Put(character);
        return;
    }
    out.Put(0xD800 + ((character - 0x10000) >> 10));
    out.Put(0xDC00 + ((character - 0x10000) & 0x3FF));
}

char32_t TakeUtf16(const wchar_t*& next, const wchar_t* end) {
    const auto unit = static_cast<char32_t>(*next++) & 0xFFFF;
    if (unit < 0xD800 || unit > 0xDFFF) {
        return unit;
    }
    if (unit > 0xDBFF || next == end) {
        return kReplacement;
    }
    const auto low = static_cast<char32_t>(*next) & 0xFFFF;
    if (low < 0xDC00 || low > 0xDFFF) {
        return kReplacement;
    }
    ++next;
    return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

void PutUtf8(Output<char>& out, char32_t character) {
    if (character < 0x80) {
        out.Put(character);
        return;
    }
    if (character < 0x800) {
        out.Put(0xC0 | character >> 6);
    } else {
        if (character < 0x10000) {
            out.Put(0xE0 | character >> 12);
        } else {
            out.Put(0xF0 | character >> 18);
            out.Put(0x80 | (character >> 12 & 0x3F));
        }
        out.Put(0x80 | (character >> 6 & 0x3F));
    }
    out.Put(0x80 | (character & 0x3F));
}

void PutBytes(Output<char>& out, unsigned int bytes) {
    if (bytes > 0xFF) {
        out.Put(bytes >> 8);
    }
    out.Put(bytes & 0xFF);
}

/// The code page that a number stands for, but for UTF-8, which has no table; null when there is none.
const CodePage* FindCodePage(UINT number) {
    switch (number) {
        case CP_ACP:
            return CodePage::Find(kAnsiCodePage);
        case CP_OEMCP:
            return CodePage::Find(g_oemCodePage);
        default:
            return CodePage::Find(number);
    }
}

}  // namespace

void SetOemCodePage(UINT codePage) {
    g_oemCodePage = codePage;
}

void ResetText() {
    g_oemCodePage = kFirstOemCodePage;
}

}  // namespace velm::posix

using namespace velm::posix;

UINT GetOEMCP() {
    return g_oemCodePage;
}

int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR in, int inSize, LPWSTR out, int outUnits) {
    if (MustFail("MultiByteToWideChar")) {
        return 0;
    }
    const CodePage* page = nullptr;
    if (codePage != CP_UTF8) {
        page = WithinSystem(page, [&] { return FindCodePage(codePage); });
    }
    if (in == nullptr || inSize == 0 || outUnits < 0 || (out == nullptr && outUnits != 0) || flags != 0 ||
        (page == nullptr && codePage != CP_UTF8)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const auto* next = reinterpret_cast<const unsigned char*>(in);
    const unsigned char* const end =
        next + (inSize < 0 ? std::strlen(in) + 1 : static_cast<std::size_t>(inSize));
    Output<wchar_t> output(out, outUnits);
    while (next != end) {
        PutUtf16(output, page != nullptr ? page->Take(next, end) : TakeUtf8(next, end));
    }
    return output.Result();
}

int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR in, int inUnits, LPSTR out, int outSize,
                        LPCSTR defaultChar, LPBOOL usedDefault) {
    if (MustFail("WideCharToMultiByte")) {
        return 0;
    }
    const CodePage* page = nullptr;
    if (codePage != CP_UTF8) {
        page = WithinSystem(page, [&] { return FindCodePage(codePage); });
    }
    if (in == nullptr || inUnits == 0 || outSize < 0 || (out == nullptr && outSize != 0) || flags != 0 ||
        defaultChar != nullptr || usedDefault != nullptr || (page == nullptr && codePage != CP_UTF8)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const wchar_t* next = in;
    const wchar_t* const end = in + (inUnits < 0 ? std::wcslen(in) + 1 : static_cast<std::size_t>(inUnits));
    Output<char> output(out, outSize);
    while (next != end) {
        if (page != nullptr) {
            PutBytes(output, page->BytesOf(static_cast<char16_t>(*next++)));
        } else {
            PutUtf8(output, TakeUtf16(next, end));
        }
    }
    return output.Result();
}
