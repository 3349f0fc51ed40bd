#pragma once

#include <string>

namespace velm::test {

/// Builds numbers, chunks and files in RIFF format.
inline std::string Le16(unsigned int value) {
    return {static_cast<char>(value), static_cast<char>(value >> 8)};
}

inline std::string Le32(unsigned int value) {
    return Le16(value) + Le16(value >> 16);
}

/// A chunk with the right size field, and a pad byte after an odd body.
inline std::string Chunk(const std::string& tag, const std::string& body) {
    return tag + Le32(static_cast<unsigned int>(body.size())) + body + std::string(body.size() % 2, '\0');
}

inline std::string Riff(const std::string& chunks) {
    return "RIFF" + Le32(static_cast<unsigned int>(4 + chunks.size())) + "WAVE" + chunks;
}

/// The 16-byte body of a "fmt " chunk for PCM.
inline std::string PcmFormat(unsigned int channels, unsigned int rate, unsigned int bits) {
    return Le16(1) + Le16(channels) + Le32(rate) + Le32(rate * channels * bits / 8) +
           Le16(channels * bits / 8) + Le16(bits);
}

}  // namespace velm::test
