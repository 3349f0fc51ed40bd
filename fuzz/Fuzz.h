#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "TemporaryFile.h"

/// Aborts with file, line and condition if the condition does not hold.
#define VELM_FUZZ_DEMAND(condition)                                              \
    do {                                                                         \
        if (!(condition)) {                                                      \
            std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                        \
        }                                                                        \
    } while (false)

inline std::string TextOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// A temporary file, with a name that is unique to this process.
inline velm::test::TemporaryFile FileOf(const std::string& content) {
    static const std::string path =
        (std::filesystem::temp_directory_path() / ("fuzz-" + std::to_string(std::random_device()())))
            .string();
    return {path, content};
}
