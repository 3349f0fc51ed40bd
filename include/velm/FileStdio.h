#pragma once

#include <cstdio>

#include "velm/core/Export.h"

namespace velm {

/// Owns a stdio stream.
///
/// A copy refers to the same stream but does not own it. Only the object that opened the stream closes it;
/// its copies are then left with a closed stream.
/// Threads: one at a time.
class VELM_UTIL_API FileStdio {
public:
    FileStdio();
    /// Refers to the other's stream without owning it.
    FileStdio(const FileStdio& other);
    /// Closes an owned stream, then refers to the other's without owning it. No effect if both refer to the
    /// same.
    FileStdio& operator=(const FileStdio& other);

    /// Closes an owned stream.
    ~FileStdio();

    /// Opens a file; closes an owned stream first.
    /// @param path  in the encoding that fopen_s expects, the system's
    /// @param mode  as for fopen
    /// @return the stream, owned by the object; null when the file cannot be opened, for a null argument, or
    ///         for a mode that does not begin with "r", "w" or "a"
    std::FILE* Open(const char* path, const char* mode);

    /// Returns the stream; null when there is none.
    std::FILE* Get();

    /// Closes the stream if the object owns it. Get then returns null.
    void Close();

    /// The same as Close(); ignores the argument.
    void Close(std::FILE* file);

private:
    std::FILE* mFile;
    bool mOwned;
};

}  // namespace velm
