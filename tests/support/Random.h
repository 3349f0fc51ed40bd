#pragma once

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>
#include <vector>

namespace velm::test {

/// A random engine whose seed is printed; VELM_SEED repeats a run.
inline std::mt19937 SeededRandom() {
    const char* const given = std::getenv("VELM_SEED");
    const unsigned int seed = given != nullptr ? static_cast<unsigned int>(std::strtoul(given, nullptr, 10))
                                               : std::random_device{}();
    std::cout << "VELM_SEED=" << seed << '\n';
    return std::mt19937(seed);
}

/// Pseudo-random bytes, so that lost, repeated or swapped ones are noticed.
inline std::vector<unsigned char> RandomBytes(std::size_t size, unsigned int seed = 1) {
    std::minstd_rand random(seed);
    std::vector<unsigned char> bytes(size);
    std::ranges::generate(bytes, [&] { return static_cast<unsigned char>(random() >> 8); });
    return bytes;
}

}  // namespace velm::test
