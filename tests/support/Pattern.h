#pragma once

#include <cstddef>
#include <vector>

namespace velm::test {

/// Pseudo-random bytes, so that a lost, repeated or swapped one shows.
inline std::vector<unsigned char> Pattern(std::size_t size, unsigned int seed = 1) {
    std::vector<unsigned char> bytes(size);
    for (unsigned char& byte : bytes) {
        seed = seed * 1664525U + 1013904223U;
        byte = static_cast<unsigned char>(seed >> 24);
    }
    return bytes;
}

}  // namespace velm::test
