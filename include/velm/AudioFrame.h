#pragma once

#include <memory>

#include "velm/UtilErrorCode.h"

namespace velm {

/// What the payload of an audio frame is. The two members of a pair differ for the client only.
enum E_FrameType : int {
    E_FrameType_Invalid = -1,
    E_FrameType_Raw0 = 0,
    E_FrameType_Raw1 = 1,
    E_FrameType_Opus0 = 2,
    E_FrameType_Opus1 = 3,
};

/// One audio frame as it travels between audio stages: a header of 6 bytes, then the payload.
///
///     byte 0     6, the size of the header
///     byte 1     the frame type, 0 to 3
///     bytes 2-3  the caller's counter, little-endian
///     bytes 4-5  the size of the payload in bytes, little-endian
///
/// An object either owns a frame that it wrote or reads one of the caller's in place. In place, every getter
/// looks at the bytes anew and none reads outside the header, but two getters can disagree when the bytes
/// change in between. Copy a frame first when another thread or process can still write to it.
/// Threads: one at a time.
class VELM_UTIL_API AudioFrame {
public:
    AudioFrame();
    virtual ~AudioFrame();
    AudioFrame(const AudioFrame&) = delete;
    AudioFrame& operator=(const AudioFrame&) = delete;

    /// Builds a frame around a copy of the payload. The block that holds it is kept and grows when needed.
    /// @param dataSize  in bytes; the header has room for 65535, of a larger size it stores the low 16 bits
    /// @param data  the payload; the caller's; may be null when `dataSize` is 0
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for a type outside 0 to 3, for null data with a size, or for
    ///         a size that leaves no room for the header in 32 bits; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY. After
    ///         a failure the object holds no frame.
    ErrorCode InitilizeWriter(E_FrameType type, unsigned short counter, unsigned int dataSize,
                              unsigned char* data);

    /// Reads a frame of the caller's in place, after checking its header; releases the object's own block.
    /// @param frame  the caller's, not the object's own; must outlive its use here; bytes after the payload
    ///               are ignored
    /// @param frameSize  in bytes
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for a null frame or fewer than 7 bytes;
    ///         VELM_ERROR_UTIL_UNKNOWN for an invalid header, or one whose payload is empty or longer than
    ///         the frame. After a failure the object holds no frame.
    ErrorCode InitilizeReader(unsigned char* frame, unsigned int frameSize);

    /// The frame; null when there is none. It stays the property of the object, or of the reader's caller.
    unsigned char* GetFrameBuffer();

    /// The size in bytes of the frame, for a reader as it was given; 0 when there is none.
    unsigned int GetFrameBufferSize();

    /// The payload; null when there is no frame or its first byte is not 6.
    unsigned char* GetDataBuffer();

    /// The size in bytes of the payload, as the header gives it; 0 when there is no frame, or when byte 0 plus
    /// that size exceeds the frame. For a frame that has not changed since InitilizeReader, the payload lies
    /// inside the frame. If byte 0 has changed since, it can extend up to 6 bytes past the end: check
    /// GetDataBuffer, which is null then.
    unsigned int GetDataBufferSize();

    /// The header's counter; 0 when there is no frame.
    unsigned short GetCounter();

    /// The header's type; -1 when there is no frame or the type is outside 0 to 3.
    E_FrameType GetFrameType();

    /// Whether there is a frame of type 0 or 1.
    bool IsRawCodec();

    /// Whether there is a frame of type 2 or 3.
    bool IsOpusCodec();

private:
    ErrorCode CheckFrameHeader();
    ErrorCode SetFrameHeader(E_FrameType type, unsigned short counter, unsigned int dataSize);

    static const int m_cnHeaderByteSize;

    bool m_bInitialized;
    unsigned char* m_pFrameBuffer;
    unsigned int m_nFrameBufferSize;
    std::unique_ptr<unsigned char[]> m_pOwnBuffer;
    unsigned int m_nOwnBufferSize;
};

}  // namespace velm
