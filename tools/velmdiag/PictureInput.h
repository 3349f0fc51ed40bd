#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "velm/core/FileReader.h"

namespace velmdiag {

/// A planar 4:2:0 frame as stored in files: Y, then U, then V, without gaps.
struct Frame {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> bytes;

    int ChromaWidth() const { return (width + 1) / 2; }
    std::size_t LumaSize() const {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
    std::size_t ChromaSize() const {
        return static_cast<std::size_t>(ChromaWidth()) * static_cast<std::size_t>((height + 1) / 2);
    }
    unsigned char* Y() { return bytes.data(); }
    unsigned char* U() { return Y() + LumaSize(); }
    unsigned char* V() { return U() + ChromaSize(); }
};

/// Reads the frames of a file in order. The file is raw or Y4M, which is recognised by its header.
class PictureInput {
public:
    /// @param size  such as "1280x720"; required for a raw file, may be empty for Y4M
    /// Throws Failure when the file cannot be read, or has a format other than 8-bit 4:2:0.
    PictureInput(const std::string& path, const std::string& size);

    /// Reads the next frame, scaled to limited range. Throws Failure when the file cannot be read or ends
    /// within the frame.
    /// @return false when there are no more frames
    bool Read(Frame& frame);

    bool IsY4m() const { return m_isY4m; }
    bool IsFullRange() const { return m_isFullRange; }
    int Width() const { return m_width; }
    int Height() const { return m_height; }

    /// The number of complete frames, from the file's size, if all frame headers are as long as the last one
    /// read; none for a pipe.
    std::optional<std::uint64_t> FrameCount() const;

private:
    void ReadHeader(const std::string& line);
    std::string ReadLine();
    std::size_t ReadBytes(unsigned char* bytes, std::size_t size);
    std::size_t FrameSize() const;

    std::string m_path;
    velm::FileReader m_reader;
    std::string m_prefix;  // read to recognise the format, not yet returned by ReadBytes
    bool m_isY4m = false;
    bool m_isFullRange = false;
    int m_width = 0;
    int m_height = 0;
    std::uint64_t m_position = 0;         // bytes read from the file
    std::uint64_t m_frameHeaderSize = 0;  // of the last frame's header, in bytes
    std::uint64_t m_framesRead = 0;
};

}  // namespace velmdiag
