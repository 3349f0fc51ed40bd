#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

/// A temporary file, for inputs that must be files; private to this process and removed when it ends.
class ScratchFile {
public:
    ScratchFile()
        : m_path((std::filesystem::temp_directory_path() / ("fuzz-" + std::to_string(std::random_device()())))
                     .string()) {}
    ~ScratchFile() {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    /// Replaces the contents.
    /// @return its path
    const std::string& Write(const std::string& bytes) {
        std::ofstream file(m_path, std::ios::binary | std::ios::trunc);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return m_path;
    }

private:
    std::string m_path;
};
