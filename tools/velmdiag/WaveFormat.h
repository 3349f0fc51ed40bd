#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velmdiag {

/// A chunk of a RIFF file.
struct WaveChunk {
    std::string tag;
    std::uint64_t offset;  ///< of its header, in bytes from the beginning of the file
    std::uint32_t size;    ///< of its body, in bytes, as the header gives it
};

/// What stands before the sample data of a WAVE file.
struct WaveFormat {
    std::uint16_t formatTag = 0;
    std::uint16_t channels = 0;
    std::uint32_t samplesPerSecond = 0;
    std::uint32_t averageBytesPerSecond = 0;
    std::uint16_t blockAlign = 0;
    std::uint16_t bitsPerSample = 0;
    std::vector<unsigned char> chunkBody;      ///< of the "fmt " chunk, all of it
    std::optional<std::uint32_t> factSamples;  ///< samples in each channel, as the "fact" chunk gives them
    std::uint32_t dataSize = 0;                ///< in bytes, as the "data" chunk gives it
    bool sizeIsOpen = false;                   ///< written to a pipe: dataSize is more than what will follow
    std::vector<WaveChunk> chunks;             ///< up to the sample data
};

/// The format tag; of an extensible format the one that its sub-format stands for, if it does for one.
std::uint16_t CodingOf(const WaveFormat& format);

/// The name of what CodingOf gives, such as "PCM" or "IMA ADPCM"; "unknown" when it has none here.
std::string NameOfFormat(const WaveFormat& format);

/// The tag's number, such as "0x0011", with that of the sub-format or its GUID.
std::string TextOfTag(const WaveFormat& format);

/// How many samples each channel has in so many bytes of data; none when the header does not tell.
std::optional<std::uint64_t> SamplesIn(const WaveFormat& format, std::uint64_t bytes);

/// The play time of so many bytes of data in seconds; none when the header does not tell.
std::optional<double> DurationOf(const WaveFormat& format, std::uint64_t bytes);

}  // namespace velmdiag
