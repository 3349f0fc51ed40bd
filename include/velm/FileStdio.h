#pragma once

#include <cstdio>

#include "velm/core/Export.h"

namespace velm {

/// Owns a stdio stream.
///
/// A copy has the same stream to read or write, but does not own it: only the object that opened the stream
/// closes it, and with that ends what its copies have.
/// Threads: one at a time.
class VELM_UTIL_API FileStdio {
public:
    FileStdio();
    /// Has the same stream and does not own it.
    FileStdio(const FileStdio& other);
    /// Closes a stream of its own first.
    FileStdio& operator=(const FileStdio& other);

    /// Closes.
    ~FileStdio();

    /// Opens a file. A stream of its own that is open is closed first.
    /// @param path  in the encoding of fopen_s, which is the system's
    /// @param mode  as for fopen
    /// @return the stream, the object's; null when the file cannot be opened, or for a null argument or a
    ///         mode that does not begin with "r", "w" or "a"
    std::FILE* Open(const char* path, const char* mode);

    /// The stream; null when none is open.
    std::FILE* Get();

    /// Closes the stream, if it is the object's own. Get then returns null.
    void Close();

    /// The same; the argument is left alone.
    void Close(std::FILE* file);

private:
    std::FILE* mFile;
    bool mOwned;
};

}  // namespace velm
