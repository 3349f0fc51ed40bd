#include "JsonNesting.h"

#include <emmintrin.h>  // SSE2, which every 64-bit x86 processor has

#include <bit>
#include <cstdint>
#include <cstring>

// A parser goes down a level at an opening bracket outside a string and up at a closing one. Up to its first
// error all brackets match and a string ends at a quote without a backslash, so counting both kinds of
// brackets alike, and nothing else, gives the parser's depth. Beyond that error the count may find a bracket
// that the parser would not have come to, in a text that is refused in any case.
//
// 64 bytes at a time, as bits of a word: parsing 10 MB takes some 70 ms, and the look ahead is not to be
// felt.
namespace velm {
namespace {

constexpr std::size_t kBlockSize = 64;

/// Which of 16 bytes equal `byte`.
std::uint64_t Equal(__m128i bytes, char byte) {
    return static_cast<std::uint64_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(byte))));
}

/// The bytes of a block that matter, a bit for each, the first byte the lowest bit.
struct Block {
    std::uint64_t quotes = 0;
    std::uint64_t backslashes = 0;
    std::uint64_t opening = 0;
    std::uint64_t closing = 0;

    explicit Block(const char* bytes) {
        static_assert(('[' | 0x20) == '{' && (']' | 0x20) == '}');
        for (std::size_t i = 0; i < kBlockSize; i += sizeof(__m128i)) {
            const __m128i part = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
            const __m128i folded = _mm_or_si128(part, _mm_set1_epi8(0x20));
            quotes |= Equal(part, '"') << i;
            backslashes |= Equal(part, '\\') << i;
            opening |= Equal(folded, '{') << i;
            closing |= Equal(folded, '}') << i;
        }
    }
};

/// Tells from block to block what is inside strings.
class Strings {
public:
    /// @return a bit for every byte of the block that is inside a string, its opening quote included
    std::uint64_t Inside(const Block& block) {
        std::uint64_t inside = block.quotes & ~Escaped(block.backslashes);
        for (int i = 1; i < 64; i *= 2) {
            inside ^= inside << i;  // in the end a bit is the parity of the quotes up to it
        }
        inside ^= m_inside;
        m_inside = 0 - (inside >> 63);
        return inside;
    }

private:
    std::uint64_t Escaped(std::uint64_t backslashes) {
        std::uint64_t escaped = m_escaped ? 1 : 0;
        m_escaped = false;
        backslashes &= ~escaped;
        while (backslashes != 0) {
            const int i = std::countr_zero(backslashes);
            m_escaped = i == 63;
            escaped |= std::uint64_t{2} << i;
            backslashes &= ~(std::uint64_t{3} << i);  // an escaped backslash escapes nothing
        }
        return escaped;
    }

    std::uint64_t m_inside = 0;  // all bits set when a string goes on
    bool m_escaped = false;      // by a backslash at the end of the block before
};

}  // namespace

std::size_t FindTooDeep(std::string_view text, int mostDeep) {
    std::size_t start = text.find_first_not_of(" \t\r\n");
    if (start == text.npos || (text[start] != '[' && text[start] != '{')) {
        return text.npos;
    }
    Strings strings;
    int depth = 0;
    for (; start < text.size(); start += kBlockSize) {
        char tail[kBlockSize] = {};
        const char* bytes = text.data() + start;
        if (text.size() - start < kBlockSize) {
            std::memcpy(tail, bytes, text.size() - start);
            bytes = tail;
        }
        const Block block(bytes);
        const std::uint64_t outside = ~strings.Inside(block);
        for (std::uint64_t left = (block.opening | block.closing) & outside; left != 0; left &= left - 1) {
            const int i = std::countr_zero(left);
            depth += (block.opening >> i & 1) != 0 ? 1 : -1;
            if (depth > mostDeep) {
                return start + static_cast<std::size_t>(i);
            }
            if (depth == 0) {
                return text.npos;  // the value ends
            }
        }
    }
    return text.npos;
}

}  // namespace velm
