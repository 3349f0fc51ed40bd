#pragma once

#include <cstddef>
#include <vector>

namespace velm::test {

/// Bytes that differ from their neighbours, so that a lost, doubled or swapped one shows.
inline std::vector<unsigned char> Pattern(std::size_t size, unsigned int seed = 1) {
    std::vector<unsigned char> bytes(size);
    for (unsigned char& byte : bytes) {
        seed = seed * 1664525U + 1013904223U;
        byte = static_cast<unsigned char>(seed >> 24);
    }
    return bytes;
}

}  // namespace velm::test
