#include <windows.h>

#include <cstring>
#include <cwchar>

#include "Intercept.h"
#include "velm/posix/Control.h"

namespace velm::posix {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

std::atomic<UINT> g_oemCodePage{437};

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
        if (m_size != 0 && m_count > m_size) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return 0;
        }
        return m_count;
    }

private:
    Unit* m_out;
    int m_size;
    int m_count = 0;
};

bool IsContinuation(unsigned char byte) {
    return (byte & 0xC0U) == 0x80U;
}

/// Takes one character off the text; a malformed sequence counts as one replacement character for each
/// maximal part of it that could have begun a character (Unicode, 3.9).
char32_t TakeUtf8(const unsigned char*& next, const unsigned char* end) {
    const unsigned char lead = *next++;
    if (lead < 0x80) {
        return lead;
    }
    int more = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    char32_t value = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        more = 1;
        value = lead & 0x1FU;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        more = 2;
        value = lead & 0x0FU;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        more = 3;
        value = lead & 0x07U;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return kReplacement;
    }
    for (; more != 0; --more) {
        if (next == end || !IsContinuation(*next) || *next < low || *next > high) {
            return kReplacement;
        }
        value = value << 6 | (*next++ & 0x3FU);
        low = 0x80;
        high = 0xBF;
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

}  // namespace

void SetOemCodePage(UINT codePage) {
    g_oemCodePage = codePage;
}

void ResetText() {
    g_oemCodePage = 437;
}

}  // namespace velm::posix

using namespace velm::posix;

UINT GetOEMCP() {
    return g_oemCodePage;
}

int MultiByteToWideChar(UINT codePage, DWORD, LPCSTR in, int inSize, LPWSTR out, int outUnits) {
    if (MustFail("MultiByteToWideChar")) {
        return 0;
    }
    if (in == nullptr || inSize == 0 || outUnits < 0 || (out == nullptr && outUnits != 0) ||
        codePage != CP_UTF8) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const auto* next = reinterpret_cast<const unsigned char*>(in);
    const unsigned char* const end =
        next + (inSize < 0 ? std::strlen(in) + 1 : static_cast<std::size_t>(inSize));
    Output<wchar_t> output(out, outUnits);
    while (next != end) {
        PutUtf16(output, TakeUtf8(next, end));
    }
    return output.Result();
}

int WideCharToMultiByte(UINT codePage, DWORD, LPCWSTR in, int inUnits, LPSTR out, int outSize, LPCSTR,
                        LPBOOL) {
    if (MustFail("WideCharToMultiByte")) {
        return 0;
    }
    if (in == nullptr || inUnits == 0 || outSize < 0 || (out == nullptr && outSize != 0) ||
        codePage != CP_UTF8) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const wchar_t* next = in;
    const wchar_t* const end = in + (inUnits < 0 ? std::wcslen(in) + 1 : static_cast<std::size_t>(inUnits));
    Output<char> output(out, outSize);
    while (next != end) {
        PutUtf8(output, TakeUtf16(next, end));
    }
    return output.Result();
}
