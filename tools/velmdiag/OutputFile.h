#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>

#include "Interruption.h"

namespace velmdiag {

/// A file that a command writes. It appears in its place only when it is complete: until then it has another
/// name beside it, and an earlier file of that name stays as it was. What is no ordinary file (a pipe, a
/// device) is written directly, as is standard output, which is named "-".
class OutputFile {
public:
    /// Throws Failure when the file cannot be created.
    explicit OutputFile(const std::string& path);
    /// Removes what was not committed.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Whether bytes that were written are gone, so that WriteAt is not possible.
    bool IsStream() const { return m_written.empty(); }

    /// Appends bytes. Throws Failure when they cannot be written. Threads: one at a time.
    void Write(const void* bytes, std::size_t size);
    /// Overwrites bytes written before. Throws Failure. Only when IsStream() is false.
    void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size);

    /// Puts the complete file in its place. Throws Failure when that fails; the file is removed then.
    void Commit();

    /// Removes the file before the program ends without unwinding. Threads: any; a later Write fails.
    void Abandon();

private:
    void OpenBeside();
    void Check();
    void Discard();

    std::string m_name;               ///< as the user gave it
    std::filesystem::path m_place;    ///< where the file belongs, behind links
    std::filesystem::path m_written;  ///< where it is until then; empty for a stream
    std::ofstream m_file;
    std::ostream* m_stream = &m_file;
    std::mutex m_mutex;  ///< between Write and Abandon
    Interruption m_interruption;
};

}  // namespace velmdiag
