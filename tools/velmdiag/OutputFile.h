#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>

#include "Interruption.h"

namespace velmdiag {

/// A file that a command writes. It is written under a temporary name in the same folder and renamed when
/// complete, so an existing file is either replaced as a whole or unchanged. Pipes, devices and standard
/// output ("-") are written directly.
class OutputFile {
public:
    /// Throws Failure when the file cannot be created.
    explicit OutputFile(const std::string& path);
    /// Removes the file unless it was committed.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Whether the output is a stream, on which WriteAt is not possible.
    bool IsStream() const { return m_temporary.empty(); }

    /// Appends bytes. Throws Failure when they cannot be written. Threads: one at a time.
    void Write(const void* bytes, std::size_t size);
    /// Overwrites bytes written before. Throws Failure. Only when IsStream() is false.
    void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size);

    /// Completes the file and renames it to its final name. If that fails, removes it and throws Failure.
    void Commit();

    /// Removes the file, for a program that is about to end without running destructors. Threads: any; a
    /// later Write fails.
    void Abandon();

private:
    void OpenTemporary();
    void Check();
    void Discard();

    std::string m_name;                 ///< as the user gave it
    std::filesystem::path m_target;     ///< the file to replace, symbolic links resolved
    std::filesystem::path m_temporary;  ///< the temporary file; empty for a stream and once committed
    std::ofstream m_file;
    std::ostream* m_stream = &m_file;
    std::mutex m_mutex;  ///< held by Write and Abandon
    Interruption m_interruption;
};

}  // namespace velmdiag
