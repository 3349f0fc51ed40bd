#pragma once

#include <cstdint>
#include <string>

#include "OutputFile.h"
#include "WaveFormat.h"

namespace velmdiag {

/// Writes a WAVE file of a given format. The file appears under its name only after Finish.
class WaveWriter {
public:
    /// @param path  "-" for standard output
    /// Throws Failure when the file cannot be created.
    WaveWriter(const std::string& path, const WaveFormat& format);

    /// Appends sample data. Throws Failure when it cannot be written.
    void Write(const unsigned char* data, std::size_t size);

    /// Fills in the sizes and gives the file its name. Throws Failure when it cannot be written.
    void Finish();

    /// Removes the unfinished file. Threads: any; a later Write fails.
    void Abandon() { m_file.Abandon(); }

private:
    std::string Header(std::uint32_t dataSize, std::uint32_t factSamples) const;

    OutputFile m_file;
    WaveFormat m_format;
    std::uint32_t m_dataSize = 0;
};

}  // namespace velmdiag
