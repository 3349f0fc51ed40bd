#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

/// A file of this process's own for inputs that have to be files; it goes when the process ends.
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

    /// Replaces what the file holds.
    /// @return its path
    const std::string& Write(const std::string& bytes) {
        std::ofstream file(m_path, std::ios::binary | std::ios::trunc);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return m_path;
    }

private:
    std::string m_path;
};
