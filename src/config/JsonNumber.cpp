#include "config/JsonNumber.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>

// A number is digits * 10^exponent = digits * 5^exponent * 2^exponent. Its nearest double is computed in one
// of three ways:
// - If digits and power of ten are exact doubles, one multiplication or division rounds correctly.
// - If digits and power of five fit in 64 bits each, integers give the leading 64 bits of the product or
//   quotient.
// - Otherwise big integers do.
// The last two give 63 or 64 bits, and whether more follow: all that is needed for rounding to 53 bits.
namespace velm {
namespace {

// The midpoint of two adjacent doubles has at most 767 significant digits. Of further digits, it only matters
// whether any is not 0.
constexpr int kMaxDigits = 770;
constexpr long long kMaxExponent = 1'000'000'000'000'000;  // larger ones are clamped

constexpr int kMaxExactPower = 22;  // 10^22 is the largest power of ten that a double holds
constexpr int kMaxExactDigits = 15;
constexpr int kMaxWordPower = 27;  // 5^27 is the largest power of five that 64 bits hold
constexpr int kMaxWordDigits = 19;
constexpr int kMaxHalfWordPower = 13;  // and 5^13 for 32 bits

constexpr double kPowersOfTen[kMaxExactPower + 1] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                     1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                     1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

constexpr auto kPowersOfFive = [] {
    std::array<std::uint64_t, kMaxWordPower + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) {
        powers[i] = powers[i - 1] * 5;
    }
    return powers;
}();

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

struct Decimal {
    bool isNegative = false;
    int count = 0;                                     ///< number of significant digits
    long long exponent = 0;                            ///< power of ten of the last digit
    std::array<unsigned char, kMaxDigits + 1> digits;  ///< values 0 to 9; neither the first nor the last is 0

    std::uint64_t Word() const {
        std::uint64_t word = 0;
        for (int i = 0; i < count; ++i) {
            word = word * 10 + digits[static_cast<std::size_t>(i)];
        }
        return word;
    }
    void Append(int digit) { digits[static_cast<std::size_t>(count++)] = static_cast<unsigned char>(digit); }
};

/// Reads digits with an optional decimal point.
/// @return the end of the digits; null if there are none
const char* ReadDigits(const char* at, const char* end, Decimal& decimal) {
    bool isAfterPoint = false;
    bool isAny = false;
    bool isMore = false;
    for (; at != end && (IsDigit(*at) || (*at == '.' && !isAfterPoint)); ++at) {
        if (*at == '.') {
            isAfterPoint = true;
            continue;
        }
        isAny = true;
        const int digit = *at - '0';
        decimal.exponent -= isAfterPoint ? 1 : 0;
        if (decimal.count == kMaxDigits) {
            isMore = isMore || digit != 0;
            ++decimal.exponent;
        } else if (digit != 0 || decimal.count != 0) {
            decimal.Append(digit);
        }
    }
    if (isMore) {
        decimal.Append(1);
        --decimal.exponent;
    }
    for (; decimal.count != 0 && decimal.digits[static_cast<std::size_t>(decimal.count - 1)] == 0;
         --decimal.count) {
        ++decimal.exponent;
    }
    return isAny ? at : nullptr;
}

/// Reads an optional exponent; false if it has no digits or something follows.
bool ReadExponent(const char* at, const char* end, Decimal& decimal) {
    if (at == end) {
        return true;
    }
    if (*at != 'e' && *at != 'E') {
        return false;
    }
    ++at;
    const bool isNegative = at != end && *at == '-';
    at += at != end && (*at == '-' || *at == '+') ? 1 : 0;
    if (at == end) {
        return false;
    }
    long long exponent = 0;
    for (; at != end && IsDigit(*at); ++at) {
        exponent = std::min(exponent * 10 + (*at - '0'), kMaxExponent);
    }
    decimal.exponent += isNegative ? -exponent : exponent;
    return at == end;
}

/// A positive number: bits * 2^exponent, plus a remainder below 2^exponent if `isMore`.
struct Binary {
    std::uint64_t bits = 0;
    int exponent = 0;
    bool isMore = false;
};

/// Rounds to the nearest double, ties to even.
std::optional<double> Round(Binary number) {
    const int zeros = std::countl_zero(number.bits);
    const std::uint64_t bits = number.bits << zeros;
    const int exponent = number.exponent - zeros + 63;  // the number is in [2^exponent, 2^(exponent + 1))
    const int kept = std::min(53, exponent + 1075);     // fewer for a subnormal
    if (kept < 0) {
        return 0.0;
    }
    const std::uint64_t half = std::uint64_t{1} << (63 - kept);
    std::uint64_t significand = kept == 0 ? 0 : bits >> (64 - kept);
    const std::uint64_t rest = bits & (2 * half - 1);
    if (rest > half || (rest == half && (number.isMore || significand % 2 != 0))) {
        ++significand;
    }
    // The leading bit of a normal number adds 1 to the exponent field, as does a carry out of the
    // significand.
    constexpr std::uint64_t kInfinity = 0x7FF0000000000000;
    if (exponent > 1023) {
        return std::nullopt;
    }
    const std::uint64_t field = kept == 53 ? static_cast<std::uint64_t>(exponent + 1022) << 52 : 0;
    const std::uint64_t result = field + significand;
    return result >= kInfinity ? std::nullopt : std::optional(std::bit_cast<double>(result));
}

Binary MultiplyWords(std::uint64_t a, std::uint64_t b) {
    const std::uint64_t low = (a & 0xFFFFFFFF) * (b & 0xFFFFFFFF);
    const std::uint64_t middle = (a >> 32) * (b & 0xFFFFFFFF) + (low >> 32);
    const std::uint64_t other = (a & 0xFFFFFFFF) * (b >> 32) + (middle & 0xFFFFFFFF);
    const std::uint64_t high = (a >> 32) * (b >> 32) + (middle >> 32) + (other >> 32);
    const std::uint64_t rest = other << 32 | (low & 0xFFFFFFFF);
    if (high == 0) {
        return {rest, 0, false};
    }
    const int zeros = std::countl_zero(high);
    return {high << zeros | (zeros != 0 ? rest >> (64 - zeros) : 0), 64 - zeros, rest << zeros != 0};
}

Binary DivideWords(std::uint64_t a, std::uint64_t b) {
    const int shiftA = std::countl_zero(a);
    const int shiftB = std::countl_zero(b);
    a <<= shiftA;
    b <<= shiftB;
    // a * 2^63 / b, bit by bit; the remainder stays below b, but twice the remainder may have 65 bits.
    std::uint64_t remainder = a >> 1;
    std::uint64_t quotient = 0;
    for (int i = 0; i < 64; ++i) {
        const bool isLong = remainder >> 63 != 0;
        remainder = remainder << 1 | (i == 0 ? a & 1 : 0);
        const bool isEnough = isLong || remainder >= b;
        remainder -= isEnough ? b : 0;
        quotient = quotient << 1 | (isEnough ? 1 : 0);
    }
    return {quotient, shiftB - shiftA - 63, remainder != 0};
}

/// An unsigned integer of up to 3,072 bits: room for 771 decimal digits, or for 5^1095, plus 64 bits.
class BigInteger {
public:
    void MultiplyAdd(std::uint32_t factor, std::uint32_t addend) {
        std::uint64_t carry = addend;
        for (std::size_t i = 0; i < m_size; ++i) {
            carry += std::uint64_t{m_words[i]} * factor;
            m_words[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        if (carry != 0) {
            m_words[m_size++] = static_cast<std::uint32_t>(carry);
        }
    }

    void MultiplyByPowerOfFive(int power) {
        for (; power > 0; power -= kMaxHalfWordPower) {
            const int step = std::min(power, kMaxHalfWordPower);
            MultiplyAdd(static_cast<std::uint32_t>(kPowersOfFive[static_cast<std::size_t>(step)]), 0);
        }
    }

    void ShiftLeft(int bits) {
        for (; bits >= 31; bits -= 31) {
            MultiplyAdd(1U << 31, 0);
        }
        MultiplyAdd(1U << bits, 0);
    }

    void Halve() {
        for (std::size_t i = 0; i < m_size; ++i) {
            const std::uint32_t above = i + 1 < m_size ? m_words[i + 1] : 0;
            m_words[i] = m_words[i] >> 1 | above << 31;
        }
        Trim();
    }

    bool IsLess(const BigInteger& other) const {
        if (m_size != other.m_size) {
            return m_size < other.m_size;
        }
        std::size_t i = m_size;
        while (i != 0 && m_words[i - 1] == other.m_words[i - 1]) {
            --i;
        }
        return i != 0 && m_words[i - 1] < other.m_words[i - 1];
    }

    /// @param other  not larger
    void Subtract(const BigInteger& other) {
        std::int64_t carry = 0;
        for (std::size_t i = 0; i < m_size; ++i) {
            carry += std::int64_t{m_words[i]} - (i < other.m_size ? other.m_words[i] : 0);
            m_words[i] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        Trim();
    }

    int BitLength() const {
        return m_size == 0 ? 0 : static_cast<int>(32 * m_size) - std::countl_zero(m_words[m_size - 1]);
    }

private:
    void Trim() {
        while (m_size != 0 && m_words[m_size - 1] == 0) {
            --m_size;
        }
    }

    std::array<std::uint32_t, 96> m_words;
    std::size_t m_size = 0;
};

Binary Divide(BigInteger& a, BigInteger& b) {
    const int shift = 63 - (a.BitLength() - b.BitLength());  // leaves a quotient of 63 or 64 bits
    a.ShiftLeft(std::max(shift, 0));
    b.ShiftLeft(std::max(-shift, 0) + 63);
    std::uint64_t quotient = 0;
    for (int i = 0; i < 64; ++i, b.Halve()) {
        const bool isEnough = !a.IsLess(b);
        if (isEnough) {
            a.Subtract(b);
        }
        quotient = quotient << 1 | (isEnough ? 1 : 0);
    }
    return {quotient, -shift, a.BitLength() != 0};
}

Binary ConvertByBigIntegers(const Decimal& decimal, int exponent) {
    BigInteger numerator;
    for (int i = 0; i < decimal.count; ++i) {
        numerator.MultiplyAdd(10, decimal.digits[static_cast<std::size_t>(i)]);
    }
    numerator.MultiplyByPowerOfFive(exponent);
    BigInteger denominator;
    denominator.MultiplyAdd(0, 1);
    denominator.MultiplyByPowerOfFive(-exponent);
    return Divide(numerator, denominator);
}

/// @param decimal  not 0
std::optional<double> Convert(const Decimal& decimal) {
    const long long first = decimal.count + decimal.exponent;  // the number is in [10^(first - 1), 10^first)
    if (first > 309) {
        return std::nullopt;
    }
    if (first < -323) {
        return 0.0;
    }
    const int exponent = static_cast<int>(decimal.exponent);
    const auto power = static_cast<std::size_t>(std::abs(exponent));
    if (decimal.count <= kMaxExactDigits && power <= kMaxExactPower) {
        const auto digits = static_cast<double>(decimal.Word());
        return exponent < 0 ? digits / kPowersOfTen[power] : digits * kPowersOfTen[power];
    }
    Binary number;
    if (decimal.count > kMaxWordDigits || power > kMaxWordPower) {
        number = ConvertByBigIntegers(decimal, exponent);
    } else if (exponent < 0) {
        number = DivideWords(decimal.Word(), kPowersOfFive[power]);
    } else {
        number = MultiplyWords(decimal.Word(), kPowersOfFive[power]);
    }
    number.exponent += exponent;
    return Round(number);
}

}  // namespace

std::optional<double> ParseJsonNumber(std::string_view text) {
    Decimal decimal;
    decimal.isNegative = text.starts_with('-');
    const char* const end = text.data() + text.size();
    const char* const at = ReadDigits(text.data() + (decimal.isNegative ? 1 : 0), end, decimal);
    if (at == nullptr || !ReadExponent(at, end, decimal)) {
        return std::nullopt;
    }
    const std::optional<double> number = decimal.count == 0 ? 0.0 : Convert(decimal);
    return number && decimal.isNegative ? -*number : number;
}

}  // namespace velm
