#include "velm/AudioFrame.h"

#include <climits>
#include <cstring>
#include <memory>
#include <new>

namespace velm {
namespace {

constexpr unsigned int kHeaderSize = 6;

bool IsValidType(int type) {
    return type >= E_FrameType_Raw0 && type <= E_FrameType_Opus1;
}

unsigned int ReadLittleEndian16(const unsigned char* bytes) {
    return bytes[0] | static_cast<unsigned int>(bytes[1]) << 8;
}

/// @return null when out of memory
std::unique_ptr<unsigned char[]> CopyToNewFrame(const unsigned char* data, unsigned int dataSize) {
    std::unique_ptr<unsigned char[]> frame(new (std::nothrow) unsigned char[kHeaderSize + dataSize]);
    if (frame != nullptr && dataSize != 0) {
        std::memcpy(frame.get() + kHeaderSize, data, dataSize);
    }
    return frame;
}

void WriteLittleEndian16(unsigned char* bytes, unsigned int value) {
    bytes[0] = static_cast<unsigned char>(value);
    bytes[1] = static_cast<unsigned char>(value >> 8);
}

}  // namespace

const int AudioFrame::m_cnHeaderByteSize = kHeaderSize;

AudioFrame::AudioFrame()
    : m_bInitialized(false), m_pFrameBuffer(nullptr), m_nFrameBufferSize(0), m_nOwnBufferSize(0) {}

AudioFrame::~AudioFrame() = default;

ErrorCode AudioFrame::InitilizeWriter(E_FrameType type, unsigned short counter, unsigned int dataSize,
                                      unsigned char* data) {
    m_bInitialized = false;
    if (dataSize > UINT_MAX - kHeaderSize || (data == nullptr && dataSize != 0)) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    m_nFrameBufferSize = dataSize + kHeaderSize;
    if (m_nOwnBufferSize >= m_nFrameBufferSize) {
        if (dataSize != 0) {
            std::memmove(m_pOwnBuffer.get() + kHeaderSize, data, dataSize);
        }
    } else {
        m_nOwnBufferSize = 0;
        m_pOwnBuffer = CopyToNewFrame(data, dataSize);
        if (m_pOwnBuffer == nullptr) {
            return VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
        }
        m_nOwnBufferSize = m_nFrameBufferSize;
    }
    m_pFrameBuffer = m_pOwnBuffer.get();
    const ErrorCode result = SetFrameHeader(type, counter, dataSize);
    m_bInitialized = !result.IsFailed();
    return result;
}

ErrorCode AudioFrame::InitilizeReader(unsigned char* frame, unsigned int frameSize) {
    m_bInitialized = false;
    if (frame == nullptr || frameSize <= kHeaderSize) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    m_pFrameBuffer = frame;
    m_nFrameBufferSize = frameSize;
    m_bInitialized = true;
    const ErrorCode result = CheckFrameHeader();
    m_bInitialized = !result.IsFailed();
    // Last, so that the steps above need not save registers for a call that is rarely made.
    m_nOwnBufferSize = 0;
    m_pOwnBuffer.reset();
    return result;
}

unsigned char* AudioFrame::GetFrameBuffer() {
    return m_bInitialized ? m_pFrameBuffer : nullptr;
}

unsigned int AudioFrame::GetFrameBufferSize() {
    return m_bInitialized ? m_nFrameBufferSize : 0;
}

unsigned char* AudioFrame::GetDataBuffer() {
    return m_bInitialized && m_pFrameBuffer[0] == kHeaderSize ? m_pFrameBuffer + kHeaderSize : nullptr;
}

unsigned int AudioFrame::GetDataBufferSize() {
    if (!m_bInitialized) {
        return 0;
    }
    // The caller may have changed the header since InitilizeReader checked it.
    const unsigned int dataSize = ReadLittleEndian16(m_pFrameBuffer + 4);
    return m_pFrameBuffer[0] + dataSize <= m_nFrameBufferSize ? dataSize : 0;
}

unsigned short AudioFrame::GetCounter() {
    return m_bInitialized ? static_cast<unsigned short>(ReadLittleEndian16(m_pFrameBuffer + 2)) : 0;
}

E_FrameType AudioFrame::GetFrameType() {
    return m_bInitialized && IsValidType(m_pFrameBuffer[1]) ? static_cast<E_FrameType>(m_pFrameBuffer[1])
                                                            : E_FrameType_Invalid;
}

bool AudioFrame::IsRawCodec() {
    const E_FrameType type = GetFrameType();
    return type == E_FrameType_Raw0 || type == E_FrameType_Raw1;
}

bool AudioFrame::IsOpusCodec() {
    const E_FrameType type = GetFrameType();
    return type == E_FrameType_Opus0 || type == E_FrameType_Opus1;
}

ErrorCode AudioFrame::CheckFrameHeader() {
    const unsigned int dataSize = ReadLittleEndian16(m_pFrameBuffer + 4);
    const bool valid = m_pFrameBuffer[0] == kHeaderSize && m_bInitialized && IsValidType(m_pFrameBuffer[1]) &&
                       kHeaderSize + dataSize <= m_nFrameBufferSize && dataSize != 0;
    return valid ? 0 : VELM_ERROR_UTIL_UNKNOWN;
}

ErrorCode AudioFrame::SetFrameHeader(E_FrameType type, unsigned short counter, unsigned int dataSize) {
    if (!IsValidType(type) || dataSize + kHeaderSize > m_nFrameBufferSize) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    unsigned char* const header = m_pFrameBuffer;  // the bytes might otherwise alias the member
    header[0] = kHeaderSize;
    header[1] = static_cast<unsigned char>(type);
    WriteLittleEndian16(header + 2, counter);
    WriteLittleEndian16(header + 4, dataSize);
    m_nFrameBufferSize = dataSize + kHeaderSize;
    return 0;
}

}  // namespace velm
