#pragma once

#include <cstdlib>
#include <iostream>
#include <random>

namespace velm::test {

/// A random engine whose seed is printed; VELM_SEED repeats a run.
inline std::mt19937 SeededRandom() {
    const char* const given = std::getenv("VELM_SEED");
    const unsigned int seed = given != nullptr ? static_cast<unsigned int>(std::strtoul(given, nullptr, 10))
                                               : std::random_device{}();
    std::cout << "VELM_SEED=" << seed << '\n';
    return std::mt19937(seed);
}

}  // namespace velm::test
