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

/// The header of a WAVE file: everything before the sample data.
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
    bool sizeIsOpen = false;        ///< the header does not give the size: the data ends with the file
    std::vector<WaveChunk> chunks;  ///< up to the sample data
};

/// The format tag; for an extensible format, the tag that its sub-format stands for, if any.
std::uint16_t CodingOf(const WaveFormat& format);

/// The name of the coding, such as "PCM" or "IMA ADPCM"; "unknown" for others.
std::string NameOfFormat(const WaveFormat& format);

/// The tag's number, such as "0x0011", with that of the sub-format or its GUID.
std::string TextOfTag(const WaveFormat& format);

/// Samples per channel in that many bytes of data; none if the header does not say.
std::optional<std::uint64_t> SamplesIn(const WaveFormat& format, std::uint64_t bytes);

/// The duration of that many bytes of data, in seconds; none if the header does not say.
std::optional<double> DurationOf(const WaveFormat& format, std::uint64_t bytes);

}  // namespace velmdiag
