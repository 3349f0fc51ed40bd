#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace velm::test {

/// A file with the given content, removed by the destructor.
class TemporaryFile {
public:
    /// @param name  UTF-8
    TemporaryFile(const std::string& name, const std::string& content) : m_name(name) {
        std::ofstream file(Path(), std::ios::binary | std::ios::trunc);
        file.write(content.data(), static_cast<std::streamsize>(content.size()));
    }
    ~TemporaryFile() {
        std::error_code ignored;
        std::filesystem::remove(Path(), ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const char* Name() const { return m_name.c_str(); }
    std::filesystem::path Path() const { return std::u8string(m_name.begin(), m_name.end()); }

private:
    std::string m_name;
};

}  // namespace velm::test
