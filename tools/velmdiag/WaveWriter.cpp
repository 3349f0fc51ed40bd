#include "WaveWriter.h"

namespace velmdiag {
namespace {

constexpr std::uint32_t kOpenSize = 0xFFFFFFFF;  // readers take this as "until the file ends"

std::string Little32(std::uint32_t value) {
    return {static_cast<char>(value), static_cast<char>(value >> 8), static_cast<char>(value >> 16),
            static_cast<char>(value >> 24)};
}

std::string Chunk(const char* tag, const std::string& body) {
    return tag + Little32(static_cast<std::uint32_t>(body.size())) + body +
           std::string(body.size() % 2, '\0');
}

}  // namespace

WaveWriter::WaveWriter(const std::string& path, const WaveFormat& format) : m_file(path), m_format(format) {
    const std::string header = Header(format.sizeIsOpen ? kOpenSize : format.dataSize,
                                      format.sizeIsOpen ? 0 : format.factSamples.value_or(0));
    m_file.Write(header.data(), header.size());
}

/// Everything before the sample data.
std::string WaveWriter::Header(std::uint32_t dataSize, std::uint32_t factSamples) const {
    std::string chunks = Chunk("fmt ", {m_format.chunkBody.begin(), m_format.chunkBody.end()});
    if (m_format.factSamples) {
        chunks += Chunk("fact", Little32(factSamples));
    }
    const std::uint64_t riffSize = 4 + chunks.size() + 8 + std::uint64_t{dataSize} + dataSize % 2;
    return "RIFF" + Little32(riffSize < kOpenSize ? static_cast<std::uint32_t>(riffSize) : kOpenSize) +
           "WAVE" + chunks + "data" + Little32(dataSize);
}

void WaveWriter::Write(const unsigned char* data, std::size_t size) {
    m_file.Write(data, size);
    m_dataSize += static_cast<std::uint32_t>(size);
}

void WaveWriter::Finish() {
    m_file.Write("", m_dataSize % 2);
    if (!m_file.IsStream() && (m_format.sizeIsOpen || m_dataSize != m_format.dataSize)) {
        // There was less data, and so fewer samples, than the header announced.
        const auto samples = static_cast<std::uint32_t>(SamplesIn(m_format, m_dataSize).value_or(0));
        const std::string header = Header(m_dataSize, samples);
        m_file.WriteAt(0, header.data(), header.size());
    }
    m_file.Commit();
}

}  // namespace velmdiag
