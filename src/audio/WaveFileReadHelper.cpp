#include "velm/WaveFileReadHelper.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "velm/core/CoreErrorCode.h"
#include "velm/core/FileReader.h"

namespace velm {
namespace {

static_assert(std::endian::native == std::endian::little, "RIFF numbers are read without byte swapping");

enum ChunkType : unsigned int { kFormatChunk = 0, kDataChunk = 1, kUnknownChunk = 2 };

/// The first bytes of every chunk; RIFF chunk layout.
struct ChunkHeader {
    char tag[4];
    unsigned int size;
};

bool HasTag(const char (&tag)[4], const char* expected) {
    return std::memcmp(tag, expected, sizeof tag) == 0;
}

ErrorCode GetFormatField(unsigned int* out, bool isFormatRead, unsigned int value) {
    if (out == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    if (!isFormatRead) {
        return VELM_ERROR_UTIL_ILLEGAL_CALL;
    }
    *out = value;
    return 0;
}

ChunkType TypeOf(const ChunkHeader& header) {
    if (HasTag(header.tag, "fmt ")) {
        return kFormatChunk;
    }
    return HasTag(header.tag, "data") ? kDataChunk : kUnknownChunk;
}

}  // namespace

WaveFileReadHelper::WaveFileReadHelper()
    : m_pReader(nullptr),
      m_bChunkHeaderRead(false),
      m_nChunkType(kUnknownChunk),
      m_nChunkSize(0),
      m_nChunkReadSize(0),
      m_stFormat{},
      m_nRiffSize(0),
      m_bInitialized(false),
      m_bHeaderRead(false),
      m_bFormatRead(false) {}

WaveFileReadHelper::WaveFileReadHelper(const WaveFileReadHelper& other) = default;
WaveFileReadHelper& WaveFileReadHelper::operator=(const WaveFileReadHelper& other) = default;
WaveFileReadHelper::~WaveFileReadHelper() = default;

ErrorCode WaveFileReadHelper::Initialize(FileReader* reader) {
    if (reader == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    m_pReader = reader;
    ErrorCode result = ReadHeader();
    if (!result.IsFailed()) {
        result = ReadUntilBeginningOfData();
    }
    m_bInitialized = !result.IsFailed();
    return result;
}

void WaveFileReadHelper::Finalize() {
    m_bInitialized = false;
}

ErrorCode WaveFileReadHelper::GetWaveData(unsigned char* buffer, unsigned long long* readSize,
                                          unsigned long long bufferSize, unsigned int milliSec) {
    if (buffer == nullptr || readSize == nullptr || bufferSize == 0 || milliSec == 0) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    if (m_pReader == nullptr) {
        return VELM_ERROR_UTIL_ILLEGAL_CALL;
    }
    bool dataRead = false;
    while (!dataRead) {
        ErrorCode result = ReadChunkHeader();
        if (!result.IsFailed()) {
            result = ReadChunk(&dataRead, buffer, readSize, bufferSize, milliSec);
        }
        if (result.IsFailed()) {
            return result;
        }
    }
    return 0;
}

ErrorCode WaveFileReadHelper::GetSampleRate(unsigned int* sampleRate) {
    return GetFormatField(sampleRate, m_bFormatRead, m_stFormat.samplesPerSecond);
}

ErrorCode WaveFileReadHelper::GetChannelNum(unsigned int* channelNum) {
    return GetFormatField(channelNum, m_bFormatRead, m_stFormat.channels);
}

ErrorCode WaveFileReadHelper::GetBitsPerSample(unsigned int* bitsPerSample) {
    return GetFormatField(bitsPerSample, m_bFormatRead, m_stFormat.bitsPerSample);
}

ErrorCode WaveFileReadHelper::GetFormatTag(unsigned int* formatTag) {
    return GetFormatField(formatTag, m_bFormatRead, m_stFormat.formatTag);
}

ErrorCode WaveFileReadHelper::ReadHeader() {
    struct {
        ChunkHeader riff;
        char formType[4];
    } header{};
    const ErrorCode result = ReadExactly(&header, sizeof header);
    if (result.IsFailed()) {
        return result;
    }
    if (!HasTag(header.riff.tag, "RIFF") || !HasTag(header.formType, "WAVE")) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    m_nRiffSize = header.riff.size;
    m_bHeaderRead = true;
    return 0;
}

ErrorCode WaveFileReadHelper::ReadUntilBeginningOfData() {
    for (;;) {
        ErrorCode result = ReadChunkHeader();
        if (result.IsFailed() || m_nChunkType == kDataChunk) {
            return result;
        }
        result = ReadChunk(nullptr, nullptr, nullptr, 0, 0);
        if (result.IsFailed()) {
            return result;
        }
    }
}

/// Reads the next chunk's header, unless the current chunk is not finished.
ErrorCode WaveFileReadHelper::ReadChunkHeader() {
    if (m_bChunkHeaderRead) {
        return 0;
    }
    m_pReader->Skip(m_nChunkSize % 2);  // the pad byte of the previous chunk
    ChunkHeader header{};
    const ErrorCode result = ReadExactly(&header, sizeof header);
    if (result.IsFailed()) {
        return result;
    }
    if (header.size >= m_nRiffSize) {
        return VELM_ERROR_UTIL_DATA_BROKEN;
    }
    m_nChunkType = TypeOf(header);
    m_nChunkSize = header.size;
    m_nChunkReadSize = 0;
    m_bChunkHeaderRead = true;
    return 0;
}

/// Reads the rest of the current chunk, or one block of a data chunk. With a null `dataRead`, sample data is
/// not read.
ErrorCode WaveFileReadHelper::ReadChunk(bool* dataRead, unsigned char* buffer, unsigned long long* readSize,
                                        unsigned long long bufferSize, unsigned int milliSec) {
    ErrorCode result = 0;
    if (m_nChunkType == kFormatChunk) {
        result = ReadFormatChunk();
    } else if (m_nChunkType == kUnknownChunk) {
        result = ReadUnknownChunk();
    } else if (dataRead != nullptr) {
        result = ReadDataChunk(dataRead, buffer, readSize, bufferSize, milliSec);
    }
    if (m_nChunkReadSize >= m_nChunkSize) {
        m_bChunkHeaderRead = false;
    }
    return result;
}

ErrorCode WaveFileReadHelper::ReadFormatChunk() {
    static_assert(sizeof(Format) == 18);
    const auto size =
        static_cast<unsigned int>(std::min<unsigned long long>(m_nChunkSize, sizeof m_stFormat));
    if (size < sizeof m_stFormat) {
        m_stFormat = {};
    }
    const ErrorCode result = ReadExactly(&m_stFormat, size);
    if (result.IsFailed()) {
        return result;
    }
    m_pReader->Skip(m_nChunkSize - size);
    m_nChunkReadSize += m_nChunkSize;
    m_bFormatRead = true;
    return 0;
}

ErrorCode WaveFileReadHelper::ReadDataChunk(bool* dataRead, unsigned char* buffer,
                                            unsigned long long* readSize, unsigned long long bufferSize,
                                            unsigned int milliSec) {
    if (m_stFormat.samplesPerSecond * milliSec % 1000 != 0) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    const unsigned int blockSize = m_stFormat.channels * m_stFormat.samplesPerSecond * milliSec / 1000;
    if (blockSize > bufferSize) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    if (blockSize == 0) {
        return VELM_ERROR_CORE_NOTHING_TO_READ;
    }
    const unsigned long long size = std::min<unsigned long long>(blockSize, m_nChunkSize - m_nChunkReadSize);
    if (size == 0) {
        return 0;  // an empty chunk
    }
    const ErrorCode result = m_pReader->Read(readSize, buffer, size);
    if (result.IsFailed()) {
        return result;
    }
    m_nChunkReadSize += *readSize;
    *dataRead = true;
    return 0;
}

ErrorCode WaveFileReadHelper::ReadUnknownChunk() {
    m_pReader->Skip(m_nChunkSize);
    m_nChunkReadSize += m_nChunkSize;
    return 0;
}

ErrorCode WaveFileReadHelper::ReadExactly(void* buffer, unsigned int size) {
    unsigned long long readSize = 0;
    return m_pReader->Read(&readSize, buffer, size);
}

}  // namespace velm
