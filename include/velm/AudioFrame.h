#pragma once

#include <memory>

#include "velm/UtilErrorCode.h"

namespace velm {

/// The payload type of an audio frame. The library treats both members of a pair alike.
enum E_FrameType : int {
    E_FrameType_Invalid = -1,
    E_FrameType_Raw0 = 0,
    E_FrameType_Raw1 = 1,
    E_FrameType_Opus0 = 2,
    E_FrameType_Opus1 = 3,
};

/// An audio frame as exchanged between audio stages: a 6-byte header, then the payload.
///
///     byte 0     6, the size of the header
///     byte 1     the frame type, 0 to 3
///     bytes 2-3  the caller's counter, little-endian
///     bytes 4-5  the size of the payload in bytes, little-endian
///
/// An object either owns a frame that it wrote or reads the caller's in place. In place, every getter reads
/// the header again and never reads outside it, but two getters can disagree if the bytes change in between.
/// Copy the frame first if another thread or process may still write to it.
/// Threads: one at a time.
class VELM_UTIL_API AudioFrame {
public:
    AudioFrame();
    virtual ~AudioFrame();
    AudioFrame(const AudioFrame&) = delete;
    AudioFrame& operator=(const AudioFrame&) = delete;

    /// Builds a frame from a copy of the payload. The object reuses its buffer and grows it when needed.
    /// @param dataSize  in bytes; the header stores the low 16 bits, so payloads should not exceed 65535
    /// @param data  the payload; owned by the caller; may be null when `dataSize` is 0
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for a type outside 0 to 3, for null data with a size, or for
    ///         a size above 2^32 - 7; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY. After a failure the object holds no
    ///         frame.
    ErrorCode InitilizeWriter(E_FrameType type, unsigned short counter, unsigned int dataSize,
                              unsigned char* data);

    /// Checks the header of a frame and then reads the frame in place. Releases the object's own buffer.
    /// @param frame  owned by the caller, not this object's own; must outlive its use here; bytes after the
    ///               payload are ignored
    /// @param frameSize  in bytes
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for a null frame or fewer than 7 bytes;
    ///         VELM_ERROR_UTIL_UNKNOWN for an invalid header, or one whose payload is empty or longer than
    ///         the frame. After a failure the object holds no frame.
    ErrorCode InitilizeReader(unsigned char* frame, unsigned int frameSize);

    /// Returns the frame, owned by the object or by the caller of InitilizeReader; null when there is none.
    unsigned char* GetFrameBuffer();

    /// Returns the frame's size in bytes, for a reader as passed in; 0 when there is no frame.
    unsigned int GetFrameBufferSize();

    /// Returns the payload; null when there is no frame or its first byte is not 6.
    unsigned char* GetDataBuffer();

    /// Returns the payload's size in bytes, from the header; 0 when there is no frame, or when byte 0 plus
    /// that size exceeds the frame. In a frame that has not changed since InitilizeReader, the payload lies
    /// inside the frame. If byte 0 has changed, it can extend up to 6 bytes past the end: check
    /// GetDataBuffer, which is then null.
    unsigned int GetDataBufferSize();

    /// Returns the header's counter; 0 when there is no frame.
    unsigned short GetCounter();

    /// Returns the header's type; -1 when there is no frame or the type is outside 0 to 3.
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
