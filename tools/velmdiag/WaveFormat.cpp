#include "WaveFormat.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>

namespace velmdiag {
namespace {

constexpr std::uint16_t kExtensible = 0xFFFE;
constexpr std::size_t kSubFormatOffset = 24;  // in the body of an extensible "fmt " chunk
constexpr std::size_t kGuidSize = 16;

/// What follows the format tag in the GUID of a sub-format: {0000XXXX-0000-0010-8000-00AA00389B71} (mmreg.h).
constexpr unsigned char kTagGuid[] = {0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};

/// A format tag from mmreg.h, or one in use that mmreg.h lacks.
struct Coding {
    std::uint16_t tag;
    const char* name;
    bool isBlockPerSample;  ///< a block holds one sample of each channel
};

constexpr Coding kCodings[] = {
    {0x0001, "PCM", true},          {0x0002, "Microsoft ADPCM", false},
    {0x0003, "float", true},        {0x0006, "A-law", true},
    {0x0007, "mu-law", true},       {0x0008, "DTS", false},
    {0x000A, "WMA Voice", false},   {0x0010, "OKI ADPCM", false},
    {0x0011, "IMA ADPCM", false},   {0x0014, "G.723 ADPCM", false},
    {0x0016, "G.721 ADPCM", false}, {0x0020, "Yamaha ADPCM", false},
    {0x0022, "TrueSpeech", false},  {0x0031, "GSM 6.10", false},
    {0x0040, "G.721 ADPCM", false}, {0x0042, "G.723.1", false},
    {0x0045, "G.726 ADPCM", false}, {0x0050, "MPEG layer I or II", false},
    {0x0055, "MP3", false},         {0x0064, "G.726 ADPCM", false},
    {0x0065, "G.722", false},       {0x00FF, "AAC", false},
    {0x0160, "WMA 1", false},       {0x0161, "WMA 2", false},
    {0x0162, "WMA Pro", false},     {0x0163, "WMA Lossless", false},
    {0x0270, "ATRAC3", false},      {0x028F, "G.722", false},
    {0x1600, "AAC in ADTS", false}, {0x1602, "AAC in LATM", false},
    {0x1610, "AAC", false},         {0x2000, "AC-3", false},
    {0x2001, "DTS", false},         {0x566F, "Vorbis", false},
    {0x674F, "Vorbis", false},      {0x704F, "Opus", false},
    {0xA109, "Speex", false},       {0xF1AC, "FLAC", false},
};

const Coding* FindCoding(std::uint16_t tag) {
    const auto* const found = std::ranges::find(kCodings, tag, &Coding::tag);
    return found != std::end(kCodings) ? found : nullptr;
}

std::string HexTag(std::uint16_t tag) {
    std::ostringstream text;
    text << "0x" << std::hex << std::uppercase << std::setw(4) << std::setfill('0') << tag;
    return text.str();
}

/// The GUID of an extensible format; null for others.
const unsigned char* SubFormatOf(const WaveFormat& format) {
    const bool isThere =
        format.formatTag == kExtensible && format.chunkBody.size() >= kSubFormatOffset + kGuidSize;
    return isThere ? format.chunkBody.data() + kSubFormatOffset : nullptr;
}

bool StandsForTag(const unsigned char* guid) {
    return std::equal(std::begin(kTagGuid), std::end(kTagGuid), guid + 2);
}

std::string TextOfGuid(const unsigned char* guid) {
    constexpr int kOrder[] = {3, 2, 1, 0, -1, 5, 4, -1, 7, 6, -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
    std::ostringstream text;
    text << std::hex << std::uppercase << std::setfill('0') << '{';
    for (const int i : kOrder) {
        if (i < 0) {
            text << '-';
        } else {
            text << std::setw(2) << static_cast<unsigned int>(guid[i]);
        }
    }
    return text.str() + '}';
}

}  // namespace

std::uint16_t CodingOf(const WaveFormat& format) {
    const unsigned char* const guid = SubFormatOf(format);
    return guid != nullptr && StandsForTag(guid) ? static_cast<std::uint16_t>(guid[0] | guid[1] << 8)
                                                 : format.formatTag;
}

std::string NameOfFormat(const WaveFormat& format) {
    const Coding* const coding = FindCoding(CodingOf(format));
    return coding != nullptr ? coding->name : "unknown";
}

std::string TextOfTag(const WaveFormat& format) {
    const unsigned char* const guid = SubFormatOf(format);
    if (guid == nullptr) {
        return HexTag(format.formatTag);
    }
    return HexTag(format.formatTag) + ", extensible, sub-format " +
           (StandsForTag(guid) ? HexTag(CodingOf(format)) : TextOfGuid(guid));
}

std::optional<std::uint64_t> SamplesIn(const WaveFormat& format, std::uint64_t bytes) {
    const Coding* const coding = FindCoding(CodingOf(format));
    if (coding != nullptr && coding->isBlockPerSample) {
        return format.blockAlign != 0 ? std::optional(bytes / format.blockAlign) : std::nullopt;
    }
    const bool isWhole = !format.sizeIsOpen && bytes != 0 && bytes == format.dataSize;
    if (isWhole && format.factSamples.value_or(0) != 0) {
        return *format.factSamples;
    }
    if (format.averageBytesPerSecond == 0 || format.samplesPerSecond == 0) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(static_cast<double>(bytes) / format.averageBytesPerSecond *
                                      format.samplesPerSecond);
}

std::optional<double> DurationOf(const WaveFormat& format, std::uint64_t bytes) {
    const auto samples = SamplesIn(format, bytes);
    if (!samples || format.samplesPerSecond == 0) {
        return std::nullopt;
    }
    return static_cast<double>(*samples) / format.samplesPerSecond;
}

}  // namespace velmdiag
