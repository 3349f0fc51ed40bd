#pragma once

#include "velm/UtilErrorCode.h"

namespace velm {

class FileReader;

/// Reads the format and the sample data of a RIFF/WAVE file, strictly forward, through a reader of the
/// caller's. Chunks other than "fmt " and "data" are skipped, with the pad byte that follows an odd chunk.
/// Sample data is handed out as the bytes of the file; no format tag and no bit depth is refused.
///
/// One object reads one file. A copy shares the caller's reader.
/// Threads: one at a time.
class VELM_UTIL_API WaveFileReadHelper {
public:
    WaveFileReadHelper();
    /// @{
    /// Copies the place in the file; the reader is shared.
    WaveFileReadHelper(const WaveFileReadHelper& other);
    WaveFileReadHelper& operator=(const WaveFileReadHelper& other);
    /// @}
    virtual ~WaveFileReadHelper();

    /// Reads up to the beginning of the sample data.
    /// @param reader  an open file at its beginning; the caller's, before, during and after
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for a null reader; VELM_ERROR_UTIL_UNKNOWN when the file is
    ///         not RIFF/WAVE; VELM_ERROR_UTIL_DATA_BROKEN for a chunk that is not smaller than the whole; the
    ///         reader's own code when a read fails, the end of the file included
    ErrorCode Initialize(FileReader* reader);

    /// Ends the reading. The reader stays open where it is.
    void Finalize();

    /// Delivers the next block of sample data: as many bytes as there are sample values in `milliSec`
    /// milliseconds (channels * samples per second * milliSec / 1000, without a factor for the bytes of a
    /// value). The last block of the data is as short as the data leaves it.
    /// @param buffer  receives the bytes; the caller's
    /// @param readSize  receives the number of bytes, also when the file ends within the block
    /// @param bufferSize  of the buffer, in bytes
    /// @param milliSec  play time of the block
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for null or zero arguments, when samples per second *
    ///         milliSec is not a multiple of 1000, or when the block is larger than the buffer: the call can
    ///         be repeated with better arguments; VELM_ERROR_CORE_NOTHING_TO_READ when the format gives a
    ///         block of 0 bytes; VELM_ERROR_UTIL_ILLEGAL_CALL before Initialize; VELM_ERROR_UTIL_DATA_BROKEN
    ///         for a chunk that is not smaller than the whole; the reader's own code when a read fails, which
    ///         is also how the data ends. A second "fmt " chunk that the end of the file cuts off has then
    ///         replaced the format by the bytes that were there: followed by zeros when its size is under 18,
    ///         by the rest of the earlier format otherwise.
    ErrorCode GetWaveData(unsigned char* buffer, unsigned long long* readSize, unsigned long long bufferSize,
                          unsigned int milliSec);

    /// Samples per second.
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for null; VELM_ERROR_UTIL_ILLEGAL_CALL before a "fmt " chunk
    ///         was read
    ErrorCode GetSampleRate(unsigned int* sampleRate);

    /// The number of channels.
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for null; VELM_ERROR_UTIL_ILLEGAL_CALL before a "fmt " chunk
    ///         was read
    ErrorCode GetChannelNum(unsigned int* channelNum);

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
