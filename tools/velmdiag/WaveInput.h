#pragma once

#include <memory>
#include <string>
#include <vector>

#include "velm/core/FileReader.h"
#include "WaveFormat.h"

namespace velmdiag {

/// A WAVE file that is read in one pass, so it may be a pipe. The constructor reads the header; Read then
/// returns the file from its beginning, for the library. Sizes that the header leaves open are replaced with
/// the largest possible values.
class WaveInput : public velm::FileReader {
public:
    /// Opens the file, or standard input for "-", and reads up to the sample data. Throws Failure when the
    /// file cannot be read or is not RIFF/WAVE. Without a "fmt " chunk the format is empty.
    explicit WaveInput(const std::string& path);

    const WaveFormat& Format() const { return m_format; }

    /// Returns the header's bytes again, then those of the sample data.
    velm::ErrorCode Read(unsigned long long* readSize, void* buffer, unsigned long long size) override;

private:
    void ReadHeader();
    void RefuseOtherFormats();
    void ReadChunk(std::uint32_t size);
    void ReadFormatChunk(const WaveChunk& chunk);
    void ReplaceOpenSizes();
    const unsigned char* ReadMoreHeader(unsigned long long size);
    [[noreturn]] void Refuse(const std::string& reason) const;

    std::string m_path;
    std::unique_ptr<velm::IReader> m_source;
    std::vector<unsigned char> m_header;
    std::size_t m_returned = 0;  // bytes of m_header that Read has returned
    WaveFormat m_format;
};

}  // namespace velmdiag
