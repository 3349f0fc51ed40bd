#include "Text.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <map>
#include <utility>

#include "Intercept.h"

namespace velm::posix {
namespace {

constexpr std::size_t kChunkUnits = 256;

/// iconv converters by target and source encoding. Opening one allocates memory, so they are cached.
using Converters = std::map<std::pair<std::string, std::string>, iconv_t>;

/// Returns iconv's name of a code page.
std::string NameOf(UINT codePage) {
    const UINT number = codePage == CP_ACP ? GetACP() : codePage == CP_OEMCP ? GetOEMCP() : codePage;
    return codePage == CP_UTF8 ? "UTF-8" : "CP" + std::to_string(number);
}

/// Converts a text in chunks. A unit that iconv rejects becomes `replacement`.
/// @param put  called with each chunk of the result
/// @return false when iconv does not support an encoding
template <typename To, typename From, typename Put>
bool Convert(const std::string& to, const std::string& from, std::basic_string_view<From> in,
             std::basic_string_view<To> replacement, Put put) {
    const Locked<Converters> converters;
    iconv_t& converter = (*converters)[{to, from}];
    if (converter == nullptr) {
        const iconv_t opened = iconv_open(to.c_str(), from.c_str());
        if (opened == reinterpret_cast<iconv_t>(-1)) {
            return false;
        }
        converter = opened;
    }
    auto* next = reinterpret_cast<char*>(const_cast<From*>(in.data()));  // iconv only reads it
    std::size_t left = in.size() * sizeof(From);
    while (left != 0) {
        To chunk[kChunkUnits];
        auto* end = reinterpret_cast<char*>(chunk);
        std::size_t room = sizeof chunk;
        const bool stopped = iconv(converter, &next, &left, &end, &room) == static_cast<std::size_t>(-1);
        const bool rejected = stopped && errno != E2BIG;
        put(std::basic_string_view<To>(chunk, kChunkUnits - room / sizeof(To)));
        if (rejected) {
            put(replacement);
            next += sizeof(From);
            left -= sizeof(From);
            iconv(converter, nullptr, nullptr, nullptr, nullptr);
        }
    }
    return true;
}

template <typename Put>
bool ConvertToWide(const std::string& from, std::string_view in, Put put) {
    return Convert<char16_t>("UTF-16LE", from, in, u"\uFFFD", put);
}

template <typename Put>
bool ConvertFromWide(const std::string& to, std::wstring_view in, Put put) {
    const auto isHigh = [](char16_t unit) { return (unit & 0xFC00) == 0xD800; };
    const std::string_view replacement = to == "UTF-8" ? "\uFFFD" : "?";
    bool known = true;
    while (known && !in.empty()) {
        char16_t units[kChunkUnits];
        const std::size_t count = std::min(in.size(), kChunkUnits);
        std::copy_n(in.begin(), count, units);
        // Do not split a surrogate pair.
        const std::size_t taken = count == kChunkUnits && isHigh(units[count - 1]) ? count - 1 : count;
        known = Convert<char>(to, "UTF-16LE", std::u16string_view(units, taken), replacement, put);
        in.remove_prefix(taken);
    }
    return known;
}

/// Writes to a caller's buffer, or only counts if its size is 0.
template <typename Unit>
class Output {
public:
    Output(Unit* out, int size) : m_out(out), m_size(static_cast<std::size_t>(size)) {}

    template <typename Chunk>
    void Put(Chunk chunk) {
        if (m_count < m_size) {
            std::copy_n(chunk.begin(), std::min(chunk.size(), m_size - m_count), m_out + m_count);
        }
        m_count += chunk.size();
    }

    /// The return value of the Windows call.
    int Result(bool valid) const {
        if (!valid || (m_size != 0 && m_count > m_size) || m_count > INT_MAX) {
            SetLastError(valid ? ERROR_INSUFFICIENT_BUFFER : ERROR_INVALID_PARAMETER);
            return 0;
        }
        return static_cast<int>(m_count);
    }

private:
    Unit* m_out;
    std::size_t m_size;
    std::size_t m_count = 0;
};

template <typename In, typename Out>
bool AreValid(const In* in, int inSize, const Out* out, int outSize, DWORD flags) {
    return in != nullptr && inSize != 0 && outSize >= 0 && (out != nullptr || outSize == 0) && flags == 0;
}

/// The text argument of a Windows call: `size` units, or up to and including the NUL for a negative size.
template <typename Unit>
std::basic_string_view<Unit> TextOf(const Unit* text, int size) {
    return {text, size >= 0 ? static_cast<std::size_t>(size) : std::char_traits<Unit>::length(text) + 1};
}

}  // namespace

std::wstring Wide(std::string_view text, const char* encoding) {
    std::wstring wide;
    ConvertToWide(encoding, text, [&](auto chunk) { wide.append(chunk.begin(), chunk.end()); });
    return wide;
}

std::string Utf8(std::wstring_view text) {
    std::string utf8;
    ConvertFromWide("UTF-8", text, [&](auto chunk) { utf8 += chunk; });
    return utf8;
}

DWORD CopyText(std::wstring_view text, LPWSTR buffer, std::size_t units) {
    const std::size_t length = text.copy(buffer, units - 1);
    buffer[length] = L'\0';
    return static_cast<DWORD>(length);
}

}  // namespace velm::posix

using namespace velm::posix;

UINT GetACP() {
    return 1252;
}

UINT GetOEMCP() {
    return Locked<Settings>()->oemCodePage;
}

int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR in, int inSize, LPWSTR out, int outUnits) {
    if (MustFail("MultiByteToWideChar")) {
        return 0;
    }
    return WithinSystem(0, [&] {
        Output<wchar_t> output(out, outUnits);
        return output.Result(
            AreValid(in, inSize, out, outUnits, flags) &&
            ConvertToWide(NameOf(codePage), TextOf(in, inSize), [&](auto chunk) { output.Put(chunk); }));
    });
}

int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR in, int inUnits, LPSTR out, int outSize,
                        LPCSTR defaultChar, LPBOOL usedDefault) {
    if (MustFail("WideCharToMultiByte")) {
        return 0;
    }
    return WithinSystem(0, [&] {
        Output<char> output(out, outSize);
        return output.Result(
            AreValid(in, inUnits, out, outSize, flags) && defaultChar == nullptr && usedDefault == nullptr &&
            ConvertFromWide(NameOf(codePage), TextOf(in, inUnits), [&](auto chunk) { output.Put(chunk); }));
    });
}
