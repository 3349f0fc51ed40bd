#include "PictureInput.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <system_error>

#include "Command.h"
#include "Path.h"
#include "velm/core/CoreErrorCode.h"

namespace velmdiag {
namespace {

constexpr int kLargestSide = 16384;
constexpr std::size_t kLongestLine = 1024;
constexpr std::string_view kY4mMagic = "YUV4MPEG2 ";
constexpr std::string_view kFrameMagic = "FRAME";

bool ParseSide(std::string_view text, int& side) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), side);
    return error == std::errc() && end == text.data() + text.size() && side >= 1 && side <= kLargestSide;
}

void ParseSize(const std::string& size, int& width, int& height) {
    const std::size_t cross = size.find('x');
    if (cross == std::string::npos || !ParseSide(std::string_view(size).substr(0, cross), width) ||
        !ParseSide(std::string_view(size).substr(cross + 1), height)) {
        throw Failure{"--size " + size + ": not a width and a height from 1 to " +
                          std::to_string(kLargestSide) + ", such as 1280x720",
                      kWrongUsage};
    }
}

/// Scales samples from 0..255 to `low`..`high`, rounding to the nearest.
void ScaleRange(unsigned char* samples, std::size_t count, int low, int high) {
    for (std::size_t i = 0; i < count; ++i) {
        samples[i] = static_cast<unsigned char>(low + (samples[i] * (high - low) + 127) / 255);
    }
}

}  // namespace

PictureInput::PictureInput(const std::string& path, const std::string& size) : m_path(path) {
    CheckFile(path, m_reader.Open(path.c_str()));
    std::string magic(kY4mMagic.size(), '\0');
    magic.resize(ReadBytes(reinterpret_cast<unsigned char*>(magic.data()), magic.size()));
    m_isY4m = magic == kY4mMagic;
    if (m_isY4m) {
        ReadHeader(ReadLine());
        m_frameHeaderSize = kFrameMagic.size() + 1;
    } else {
        m_prefix = magic;
        if (size.empty()) {
            throw Failure{path + ": has no Y4M header, so --size is required", kWrongUsage};
        }
    }
    if (!size.empty()) {
        int width = 0;
        int height = 0;
        ParseSize(size, width, height);
        if (m_isY4m && (width != m_width || height != m_height)) {
            throw Failure{path + ": its header says " + std::to_string(m_width) + 'x' +
                              std::to_string(m_height) + ", not " + size,
                          kWrongUsage};
        }
        m_width = width;
        m_height = height;
    }
}

/// Parses the size and the pixel format from the header line of a Y4M file, without its magic.
void PictureInput::ReadHeader(const std::string& line) {
    std::istringstream fields(line);
    std::string layout = "420jpeg";  // if none is given
    for (std::string field; fields >> field;) {
        const std::string value = field.substr(1);
        if (field[0] == 'W' || field[0] == 'H') {
            if (!ParseSide(value, field[0] == 'W' ? m_width : m_height)) {
                throw Failure{m_path + ": its header gives the size " + field + ", but sides go from 1 to " +
                              std::to_string(kLargestSide)};
            }
        } else if (field[0] == 'C') {
            layout = value;
        } else if (field == "XCOLORRANGE=FULL") {
            m_isFullRange = true;
        }
    }
    if (m_width == 0 || m_height == 0) {
        throw Failure{m_path + ": its header does not give a width and a height"};
    }
    if (layout != "420" && layout != "420jpeg" && layout != "420mpeg2" && layout != "420paldv") {
        throw Failure{m_path + ": its pixel format is " + layout + ", but only 8-bit 4:2:0 is supported"};
    }
}

bool PictureInput::Read(Frame& frame) {
    frame.width = m_width;
    frame.height = m_height;
    frame.bytes.resize(frame.LumaSize() + 2 * frame.ChromaSize());
    const std::string number = std::to_string(m_framesRead);
    if (m_isY4m) {
        const std::string line = ReadLine();
        if (line.empty()) {
            return false;
        }
        if (!line.starts_with(kFrameMagic)) {
            throw Failure{m_path + ": frame " + number + " does not begin with " + std::string(kFrameMagic)};
        }
        m_frameHeaderSize = line.size() + 1;
    }
    const std::size_t size = ReadBytes(frame.bytes.data(), frame.bytes.size());
    if (size == 0 && !m_isY4m && m_framesRead != 0) {
        return false;
    }
    if (size != frame.bytes.size()) {
        throw Failure{m_path + ": frame " + number + " has " + std::to_string(size) + " of the " +
                      std::to_string(frame.bytes.size()) + " bytes that " + std::to_string(m_width) + 'x' +
                      std::to_string(m_height) + " pixels need (" +
                      NameOf(velm::VELM_ERROR_CORE_END_OF_DATA) + ')'};
    }
    if (m_isFullRange) {
        ScaleRange(frame.Y(), frame.LumaSize(), 16, 235);
        ScaleRange(frame.U(), 2 * frame.ChromaSize(), 16, 240);
    }
    ++m_framesRead;
    return true;
}

std::optional<std::uint64_t> PictureInput::FrameCount() const {
    std::error_code failed;
    const std::filesystem::path path = PathOf(m_path);
    if (!std::filesystem::is_regular_file(path, failed)) {
        return std::nullopt;
    }
    const std::uint64_t size = std::filesystem::file_size(path, failed);
    const std::uint64_t left = size - (m_position - m_prefix.size());
    return failed ? std::nullopt : std::optional(m_framesRead + left / (m_frameHeaderSize + FrameSize()));
}

std::size_t PictureInput::FrameSize() const {
    const Frame frame{m_width, m_height, {}};
    return frame.LumaSize() + 2 * frame.ChromaSize();
}

/// Reads up to the next LF, which is not returned; empty at the end of the file.
std::string PictureInput::ReadLine() {
    std::string line;
    for (unsigned char byte = 0; ReadBytes(&byte, 1) == 1 && byte != '\n';) {
        line.push_back(static_cast<char>(byte));
        if (line.size() > kLongestLine) {
            throw Failure{m_path + ": a Y4M header is longer than " + std::to_string(kLongestLine) +
                          " bytes"};
        }
    }
    return line;
}

/// @return bytes read, fewer only at the end of the file
std::size_t PictureInput::ReadBytes(unsigned char* bytes, std::size_t size) {
    const std::size_t kept = std::min(size, m_prefix.size());
    std::copy_n(m_prefix.begin(), kept, bytes);
    m_prefix.erase(0, kept);
    unsigned long long got = 0;
    const velm::ErrorCode result = m_reader.Read(&got, bytes + kept, size - kept);
    if (result != velm::VELM_ERROR_CORE_END_OF_DATA) {
        CheckFile(m_path, result);
    }
    m_position += got;
    return kept + static_cast<std::size_t>(got);
}

}  // namespace velmdiag
