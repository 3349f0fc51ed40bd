#pragma once

#include <picojson.h>

#include <string>

#include "velm/core/Export.h"

namespace velm {

/// Holds the text of a JSON document and parses it. The caller and the library must be built with the same
/// picojson.
/// Threads: one at a time.
class VELM_UTIL_API JsonConfigReader {
public:
    JsonConfigReader();
    /// @{
    /// Copies the text.
    JsonConfigReader(const JsonConfigReader& other);
    JsonConfigReader& operator=(const JsonConfigReader& other);
    /// @}
    virtual ~JsonConfigReader();

    /// Replaces the text by the lines of a file, joined end to end: line ends (LF, CR LF) are not kept, a
    /// UTF-8 mark at the beginning is dropped, and a byte 1A ends the text, as it ends a text file on
    /// Windows.
    /// @param path  in the encoding of the system's narrow file names: the ANSI code page on Windows
    /// @return 0; 1 when the file cannot be opened, and the text stays as it was, or when reading it fails,
    ///         and the text is what was read so far
    int ReadFile(const std::string& path);

    /// Replaces the text by `json` as it is.
    /// @return 0
    /// Throws std::bad_alloc when memory runs out; the text stays as it was.
    int Read(const std::string& json);

    /// Parses the text: the first JSON value in it; what follows is not looked at.
    /// @param value  receives the document; after a syntax error what was understood of it
    /// @param error  receives "syntax error at line N near: " and the rest of that line; the same for text
    ///               nested deeper than picojson's limit for arrays (100), of arrays and objects alike, which
    ///               leaves `value` as it was, and for a number that no double holds
    /// @return whether `error` is empty afterwards; it is not emptied before
    /// Throws std::bad_alloc when memory runs out; `value` then holds what was parsed so far.
    bool getJsonValue(picojson::value& value, std::string& error);

private:
    std::string m_strJson;
};

}  // namespace velm
