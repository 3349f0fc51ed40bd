/// @file
/// The ends of a WAVE file that the library leaves to its clients: the whole "fmt " chunk, and writing.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace velmdiag {

/// What stands before the sample data of a WAVE file.
struct WaveFormat {
    std::uint16_t formatTag = 0;
    std::uint16_t channels = 0;
    std::uint32_t samplesPerSecond = 0;
    std::uint32_t averageBytesPerSecond = 0;
    std::uint16_t blockAlign = 0;
    std::uint16_t bitsPerSample = 0;
    std::vector<unsigned char> chunkBody;  ///< of the "fmt " chunk, all of it
    std::uint32_t dataSize = 0;            ///< in bytes, as the "data" chunk gives it
};

/// Reads up to the sample data. A file without a "fmt " chunk gives an empty format.
/// Throws Failure when the file cannot be read or is not RIFF/WAVE.
WaveFormat ReadWaveFormat(const std::string& path);

/// "PCM", "float" or the number of the format tag; for the extensible tag that of its sub-format.
std::string NameOfFormat(const WaveFormat& format);

/// Writes a WAVE file of a given format.
class WaveWriter {
public:
    /// Creates or replaces the file. Throws Failure when it cannot.
    WaveWriter(const std::string& path, const WaveFormat& format);

    /// Appends sample data; false when the file cannot be written.
    bool Write(const unsigned char* data, std::size_t size);

    /// Fills in the sizes; false when the file cannot be written. The file is playable only after this.
    bool Finish();

private:
    void Put32(std::uint32_t value);

    std::ofstream m_file;
    std::uint32_t m_headerSize = 0;
    std::uint32_t m_dataSize = 0;
};

}  // namespace velmdiag
