#pragma once

#include "velm/UtilErrorCode.h"

namespace velm {

class FileReader;

/// Reads the format and the sample data of a RIFF/WAVE file, strictly forward, through the caller's reader.
/// Chunks other than "fmt " and "data" are skipped, including the pad byte after a chunk of odd size. Sample
/// data is returned unchanged; any format tag and bit depth is accepted.
///
/// One object reads one file. A copy shares the caller's reader.
/// Threads: one at a time.
class VELM_UTIL_API WaveFileReadHelper {
public:
    WaveFileReadHelper();
    /// @{
    /// Copies the position in the file; shares the reader.
    WaveFileReadHelper(const WaveFileReadHelper& other);
    WaveFileReadHelper& operator=(const WaveFileReadHelper& other);
    /// @}
    virtual ~WaveFileReadHelper();

    /// Reads up to the start of the sample data.
    /// @param reader  an open file at its start; remains the caller's and must outlive all reading
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for a null reader; VELM_ERROR_UTIL_UNKNOWN when the file is
    ///         not RIFF/WAVE; VELM_ERROR_UTIL_DATA_BROKEN when a chunk is not smaller than the RIFF chunk;
    ///         the reader's own code when a read fails, also at the end of the file
    ErrorCode Initialize(FileReader* reader);

    /// Call after the last read. Does not close or move the reader.
    void Finalize();

    /// Reads the next block of sample data. A block has channels * samples per second * milliSec / 1000
    /// bytes: one byte per sample value, whatever the bit depth. The last block is shorter when less data is
    /// left.
    /// @param buffer  out: the block; owned by the caller
    /// @param readSize  out: number of bytes read, also when the file ends within the block
    /// @param bufferSize  size of `buffer` in bytes
    /// @param milliSec  duration in milliseconds
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for null or zero arguments, when samples per second *
    ///         milliSec is not a multiple of 1000, or when the block exceeds the buffer: retry with other
    ///         arguments; VELM_ERROR_CORE_NOTHING_TO_READ when a block has 0 bytes;
    ///         VELM_ERROR_UTIL_ILLEGAL_CALL before Initialize; VELM_ERROR_UTIL_DATA_BROKEN when a chunk is
    ///         not smaller than the RIFF chunk; the reader's own code when a read fails, also at the end of
    ///         the data. If the file ends within a second "fmt " chunk, the bytes that were there have
    ///         replaced the start of the format; the rest is zero for a chunk size under 18, otherwise
    ///         unchanged.
    ErrorCode GetWaveData(unsigned char* buffer, unsigned long long* readSize, unsigned long long bufferSize,
                          unsigned int milliSec);

    /// Gets the sample rate.
    /// @param sampleRate  out: samples per second; unchanged on failure
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for null; VELM_ERROR_UTIL_ILLEGAL_CALL before a "fmt " chunk
    ///         was read
    ErrorCode GetSampleRate(unsigned int* sampleRate);

    /// Gets the number of channels.
    /// @param channelNum  out: the number; unchanged on failure
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for null; VELM_ERROR_UTIL_ILLEGAL_CALL before a "fmt " chunk
    ///         was read
    ErrorCode GetChannelNum(unsigned int* channelNum);

    /// Gets the depth of a sample value.
    /// @param bitsPerSample  out: in bits; 0 in some compressed formats; unchanged on failure
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for null; VELM_ERROR_UTIL_ILLEGAL_CALL before a "fmt " chunk
    ///         was read
    ErrorCode GetBitsPerSample(unsigned int* bitsPerSample);

    /// Gets the encoding of the samples.
    /// @param formatTag  out: the WAVE format tag, such as 1 for integers (PCM), 3 for floating point, or
    ///                   0xFFFE if the encoding is in an extension of the chunk, which is not read;
    ///                   unchanged on failure
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for null; VELM_ERROR_UTIL_ILLEGAL_CALL before a "fmt " chunk
    ///         was read
    ErrorCode GetFormatTag(unsigned int* formatTag);

private:
#pragma pack(push, 1)
    /// The body of a "fmt " chunk.
    struct Format {
        unsigned short formatTag;
        unsigned short channels;
        unsigned int samplesPerSecond;
        unsigned int averageBytesPerSecond;
        unsigned short blockAlign;
        unsigned short bitsPerSample;
        unsigned short extraSize;
    };
#pragma pack(pop)

    ErrorCode ReadHeader();
    ErrorCode ReadUntilBeginningOfData();
    ErrorCode ReadChunkHeader();
    ErrorCode ReadChunk(bool* dataRead, unsigned char* buffer, unsigned long long* readSize,
                        unsigned long long bufferSize, unsigned int milliSec);
    ErrorCode ReadFormatChunk();
    ErrorCode ReadDataChunk(bool* dataRead, unsigned char* buffer, unsigned long long* readSize,
                            unsigned long long bufferSize, unsigned int milliSec);
    ErrorCode ReadUnknownChunk();
    ErrorCode ReadExactly(void* buffer, unsigned int size);

    FileReader* m_pReader;
    bool m_bChunkHeaderRead;
    unsigned int m_nChunkType;
    unsigned long long m_nChunkSize;
    unsigned long long m_nChunkReadSize;
    Format m_stFormat;
    unsigned long long m_nRiffSize;
    bool m_bInitialized;
    bool m_bHeaderRead;
    bool m_bFormatRead;
};

}  // namespace velm
