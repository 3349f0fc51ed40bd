#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

/// Replaces a file in the folder that the test runs in.
/// @return its whole path
inline std::string WriteFile(const std::string& name, const std::string& bytes) {
    std::ofstream file(name, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(file.flush().good()) << name;
    return (std::filesystem::current_path() / name).string();
}
