#include "WaveInput.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "Command.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/platform/CommandLine.h"
#include "velm/UtilErrorCode.h"

namespace velmdiag {
namespace {

constexpr std::size_t kRiffSizeOffset = 4;
constexpr std::size_t kFormTypeOffset = 8;
constexpr std::size_t kRiffHeaderSize = 12;
constexpr std::size_t kLargestHeader = 64 * 1024 * 1024;
constexpr std::uint32_t kLargestSize = 0xFFFFFFFF;

/// A format often mistaken for WAVE, identified by its first bytes.
struct OtherFormat {
    std::string_view magic;
    std::string_view formType;  ///< at offset 8; empty for any
    const char* name;
};

using namespace std::string_view_literals;
constexpr OtherFormat kOtherFormats[] = {
    {"RF64"sv, "WAVE"sv, "RF64, the WAVE variant for files over 4 GiB"},
    {"BW64"sv, "WAVE"sv, "BW64, the WAVE variant for files over 4 GiB"},
    {"riff\x2E\x91\xCF\x11"sv, ""sv, "W64, Sony's Wave64"},
    {"RIFX"sv, "WAVE"sv, "RIFX, the big-endian WAVE variant"},
    {"FORM"sv, "AIFF"sv, "AIFF"},
    {"FORM"sv, "AIFC"sv, "AIFF-C"},
    {"RIFF"sv, "AVI "sv, "AVI"},
    {".snd"sv, ""sv, "Sun's AU"},
    {"fLaC"sv, ""sv, "FLAC"},
    {"OggS"sv, ""sv, "Ogg"},
    {"ID3"sv, ""sv, "MP3"},
    {"caff"sv, ""sv, "CAF"},
};

class StandardInput : public velm::IReader {
public:
    StandardInput() { velm::platform::UseBinary(stdin); }

    velm::ErrorCode Read(unsigned long long* readSize, void* buffer, unsigned long long size) override {
        *readSize = std::fread(buffer, 1, size, stdin);
        if (*readSize == size) {
            return 0;
        }
        return std::ferror(stdin) != 0 ? velm::VELM_ERROR_CORE_READ_FAILED
                                       : velm::VELM_ERROR_CORE_END_OF_DATA;
    }
};

std::uint16_t Get16(const unsigned char* bytes) {
    return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

std::uint32_t Get32(const unsigned char* bytes) {
    return Get16(bytes) | static_cast<std::uint32_t>(Get16(bytes + 2)) << 16;
}

void Put32(unsigned char* bytes, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) {
        bytes[i] = static_cast<unsigned char>(value >> 8 * i);
    }
}

std::string_view TextAt(const unsigned char* bytes, std::size_t size) {
    return {reinterpret_cast<const char*>(bytes), size};
}

/// Whether this is a value that writers use while they do not know the size: close to 4 GiB or to 2 GiB.
bool IsPlaceholder(std::uint32_t size) {
    return size >= 0xFFFF0000 || (size >= 0x7FFF0000 && size <= 0x80000000);
}

}  // namespace

WaveInput::WaveInput(const std::string& path) : m_path(path == "-" ? "standard input" : path) {
    if (path == "-") {
        m_source = std::make_unique<StandardInput>();
    } else {
        auto file = std::make_unique<velm::FileReader>();
        CheckFile(m_path, file->Open(path.c_str()));
        m_source = std::move(file);
    }
    ReadHeader();
    ReplaceOpenSizes();
}

/// Reads more bytes of the header and keeps them. The result is valid until the next call.
const unsigned char* WaveInput::ReadMoreHeader(unsigned long long size) {
    constexpr unsigned long long kBlockSize = 64 * 1024;
    const std::size_t start = m_header.size();
    if (size > kLargestHeader - start) {
        Refuse("more than 64 MiB precede the sample data");
    }
    // In blocks, so that a wrong size in the header does not allocate memory.
    while (size != 0) {
        const unsigned long long block = std::min(size, kBlockSize);
        const std::size_t end = m_header.size();
        m_header.resize(end + block);
        unsigned long long got = 0;
        const velm::ErrorCode result = m_source->Read(&got, m_header.data() + end, block);
        if (result == velm::VELM_ERROR_CORE_END_OF_DATA) {
            m_header.resize(end + got);
            RefuseOtherFormats();
            Refuse("the file ends within its header (" + NameOf(result) + ')');
        }
        CheckFile(m_path, result);
        size -= block;
    }
    return m_header.data() + start;
}

void WaveInput::ReadHeader() {
    ReadMoreHeader(kRiffHeaderSize);
    RefuseOtherFormats();
    for (;;) {
        const std::uint64_t offset = m_header.size();
        const unsigned char* const header = ReadMoreHeader(8);
        const WaveChunk chunk{std::string(TextAt(header, 4)), offset, Get32(header + 4)};
        m_format.chunks.push_back(chunk);
        if (chunk.tag == "data") {
            m_format.dataSize = chunk.size;
            return;
        }
        ReadChunk(chunk.size);
    }
}

/// Throws unless what has been read so far can be RIFF/WAVE.
void WaveInput::RefuseOtherFormats() {
    const std::string_view start = TextAt(m_header.data(), std::min(m_header.size(), kRiffHeaderSize));
    const std::string_view formType = start.substr(std::min(start.size(), kFormTypeOffset));
    for (const OtherFormat& other : kOtherFormats) {
        if (start.starts_with(other.magic) && formType.starts_with(other.formType)) {
            Refuse(std::string("this is ") + other.name + "; only RIFF/WAVE is supported");
        }
    }
    const std::string_view riff = "RIFF";
    if (!riff.starts_with(start.substr(0, riff.size())) || !std::string_view("WAVE").starts_with(formType)) {
        Refuse("this is not a WAVE file (" + NameOf(velm::VELM_ERROR_UTIL_UNKNOWN) + ')');
    }
}

void WaveInput::ReadChunk(std::uint32_t size) {
    const WaveChunk& chunk = m_format.chunks.back();
    const unsigned char* const body = ReadMoreHeader(size);
    if (chunk.tag == "fmt ") {
        m_format.chunkBody.assign(body, body + size);
        ReadFormatChunk(chunk);
    } else if (chunk.tag == "fact" && size >= 4) {
        m_format.factSamples = Get32(body);
    }
    ReadMoreHeader(size % 2);  // the pad byte
}

void WaveInput::ReadFormatChunk(const WaveChunk& chunk) {
    // A short body is padded with zeros.
    std::vector<unsigned char> body = m_format.chunkBody;
    body.resize(std::max<std::size_t>(chunk.size, 16));
    m_format.formatTag = Get16(&body[0]);
    m_format.channels = Get16(&body[2]);
    m_format.samplesPerSecond = Get32(&body[4]);
    m_format.averageBytesPerSecond = Get32(&body[8]);
    m_format.blockAlign = Get16(&body[12]);
    m_format.bitsPerSample = Get16(&body[14]);
}

/// Detects sizes that a writer left open and replaces them in the header with sizes that the library accepts.
void WaveInput::ReplaceOpenSizes() {
    const std::uint32_t riffSize = Get32(m_header.data() + kRiffSizeOffset);
    const bool riffIsOpen = riffSize == 0 || IsPlaceholder(riffSize);
    if (IsPlaceholder(m_format.dataSize) || (m_format.dataSize == 0 && riffIsOpen)) {
        m_format.sizeIsOpen = true;
        if (m_format.dataSize == 0 || m_format.dataSize >= 0xFFFF0000) {
            m_format.dataSize = kLargestSize - 1;
        }
        Put32(m_header.data() + m_header.size() - 4, m_format.dataSize);
    }
    if (riffIsOpen || m_format.sizeIsOpen) {
        Put32(m_header.data() + kRiffSizeOffset, kLargestSize);
    }
}

velm::ErrorCode WaveInput::Read(unsigned long long* readSize, void* buffer, unsigned long long size) {
    unsigned long long ignored = 0;
    unsigned long long& done = readSize != nullptr ? *readSize : ignored;
    auto* const out = static_cast<unsigned char*>(buffer);
    done = std::min<unsigned long long>(size, m_header.size() - m_returned);
    std::copy_n(m_header.data() + m_returned, done, out);
    m_returned += done;
    if (done == size) {
        return 0;
    }
    unsigned long long rest = 0;
    const velm::ErrorCode result = m_source->Read(&rest, out + done, size - done);
    done += rest;
    return result;
}

void WaveInput::Refuse(const std::string& reason) const {
    throw Failure{m_path + ": " + reason};
}

}  // namespace velmdiag
