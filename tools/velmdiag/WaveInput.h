#pragma once

#include <memory>
#include <string>
#include <vector>

#include "velm/core/FileReader.h"
#include "WaveFormat.h"

namespace velmdiag {

/// A WAVE file that is read once, from its beginning to its end, so that it may be a pipe: first the header,
/// for velmdiag, then all of it, for the library. When the header leaves the sizes open, the library gets one
/// whose sizes no file exceeds.
class WaveInput : public velm::FileReader {
public:
    /// Opens the file, "-" for standard input, and reads up to the sample data. Throws Failure when the file
    /// cannot be read or is not RIFF/WAVE. A file without a "fmt " chunk gives an empty format.
    explicit WaveInput(const std::string& path);

    const WaveFormat& Format() const { return m_format; }

    /// Reads the header again, then what follows it.
    velm::ErrorCode Read(unsigned long long* readSize, void* buffer, unsigned long long size) override;

private:
    void ReadHeader();
    void RefuseOtherFormats();
    void ReadChunk(std::uint32_t size);
    void ReadFormatChunk(const WaveChunk& chunk);
    void SettleSizes();
    const unsigned char* Need(unsigned long long size);
    [[noreturn]] void Refuse(const std::string& reason) const;

    std::string m_path;
    std::unique_ptr<velm::IReader> m_source;
    std::vector<unsigned char> m_header;
    std::size_t m_given = 0;  // of m_header, in bytes
    WaveFormat m_format;
};

}  // namespace velmdiag
