#include "WaveFile.h"

#include <cstring>
#include <sstream>

#include "Command.h"
#include "Path.h"
#include "velm/core/FileReader.h"
#include "velm/UtilErrorCode.h"

namespace velmdiag {
namespace {

constexpr std::uint16_t kPcm = 1;
constexpr std::uint16_t kFloat = 3;
constexpr std::uint16_t kExtensible = 0xFFFE;
constexpr std::size_t kSubFormatOffset = 24;  // in the body of an extensible "fmt " chunk
constexpr std::size_t kLargestFormat = 64 * 1024;

class Source {
public:
    explicit Source(const std::string& path) : m_path(path) { Check(m_reader.Open(path.c_str())); }

    void Read(void* buffer, std::size_t size) {
        unsigned long long readSize = 0;
        Check(m_reader.Read(&readSize, buffer, size));
    }

    void Skip(std::uint64_t size) {
        unsigned char ignored = 0;
        for (; size != 0; --size) {
            Check(m_reader.ReadU8(&ignored));
        }
    }

    void Check(velm::ErrorCode result) const {
        if (result.IsFailed()) {
            throw Failure{m_path + ": " + NameOf(result)};
        }
    }

private:
    std::string m_path;
    velm::FileReader m_reader;
};

struct ChunkHeader {
    char tag[4];
    std::uint32_t size;
};

bool HasTag(const char (&tag)[4], const char* expected) {
    return std::memcmp(tag, expected, sizeof tag) == 0;
}

std::uint16_t Get16(const std::vector<unsigned char>& bytes, std::size_t offset) {
    return static_cast<std::uint16_t>(bytes[offset] | bytes[offset + 1] << 8);
}

std::uint32_t Get32(const std::vector<unsigned char>& bytes, std::size_t offset) {
    return Get16(bytes, offset) | static_cast<std::uint32_t>(Get16(bytes, offset + 2)) << 16;
}

void ReadFormatChunk(Source& source, std::uint32_t size, WaveFormat& format) {
    if (size > kLargestFormat) {
        source.Check(velm::VELM_ERROR_UTIL_DATA_BROKEN);
    }
    format.chunkBody.resize(size);
    source.Read(format.chunkBody.data(), size);
    // A short body counts as one that goes on with zeros.
    std::vector<unsigned char> body = format.chunkBody;
    body.resize(std::max<std::size_t>(size, 16));
    format.formatTag = Get16(body, 0);
    format.channels = Get16(body, 2);
    format.samplesPerSecond = Get32(body, 4);
    format.averageBytesPerSecond = Get32(body, 8);
    format.blockAlign = Get16(body, 12);
    format.bitsPerSample = Get16(body, 14);
}

}  // namespace

WaveFormat ReadWaveFormat(const std::string& path) {
    Source source(path);
    ChunkHeader riff{};
    char formType[4]{};
    source.Read(&riff, sizeof riff);
    source.Read(formType, sizeof formType);
    if (!HasTag(riff.tag, "RIFF") || !HasTag(formType, "WAVE")) {
        throw Failure{path + ": not a WAVE file: " + NameOf(velm::VELM_ERROR_UTIL_UNKNOWN)};
    }
    WaveFormat format;
    for (;;) {
        ChunkHeader chunk{};
        source.Read(&chunk, sizeof chunk);
        if (HasTag(chunk.tag, "data")) {
            format.dataSize = chunk.size;
            return format;
        }
        if (HasTag(chunk.tag, "fmt ")) {
            ReadFormatChunk(source, chunk.size, format);
            source.Skip(chunk.size % 2);
        } else {
            source.Skip(std::uint64_t{chunk.size} + chunk.size % 2);
        }
    }
}

std::string NameOfFormat(const WaveFormat& format) {
    std::uint16_t tag = format.formatTag;
    if (tag == kExtensible && format.chunkBody.size() >= kSubFormatOffset + 2) {
        tag = Get16(format.chunkBody, kSubFormatOffset);
    }
    switch (tag) {
        case kPcm:
            return "PCM";
        case kFloat:
            return "float";
        default: {
            std::ostringstream text;
            text << "format 0x" << std::hex << tag;
            return text.str();
        }
    }
}

WaveWriter::WaveWriter(const std::string& path, const WaveFormat& format)
    : m_file(PathOf(path), std::ios::binary | std::ios::trunc) {
    const auto formatSize = static_cast<std::uint32_t>(format.chunkBody.size());
    m_file.write("RIFF\0\0\0\0WAVEfmt ", 16);
    Put32(formatSize);
    m_file.write(reinterpret_cast<const char*>(format.chunkBody.data()), formatSize);
    m_file.write("\0", formatSize % 2);
    m_file.write("data\0\0\0\0", 8);
    m_headerSize = 28 + formatSize + formatSize % 2;
    if (!m_file) {
        throw Failure{path + ": cannot be written"};
    }
}

bool WaveWriter::Write(const unsigned char* data, std::size_t size) {
    m_file.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    m_dataSize += static_cast<std::uint32_t>(size);
    return m_file.good();
}

bool WaveWriter::Finish() {
    m_file.write("\0", m_dataSize % 2);
    m_file.seekp(4);
    Put32(m_headerSize - 8 + m_dataSize + m_dataSize % 2);
    m_file.seekp(m_headerSize - 4);
    Put32(m_dataSize);
    m_file.close();
    return m_file.good();
}

void WaveWriter::Put32(std::uint32_t value) {
    const char bytes[] = {static_cast<char>(value), static_cast<char>(value >> 8),
                          static_cast<char>(value >> 16), static_cast<char>(value >> 24)};
    m_file.write(bytes, sizeof bytes);
}

}  // namespace velmdiag
