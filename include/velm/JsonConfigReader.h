#pragma once

#include <picojson.h>

#include <string>

#include "velm/core/Export.h"

namespace velm {

/// Holds the text of a JSON document and parses it. Caller and library must be built with the same picojson.
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

    /// Replaces the text with the lines of a file, concatenated without their line ends (LF or CR LF). A
    /// UTF-8 byte-order mark is dropped. A byte 1A ends the text, as in Windows' text mode.
    /// @param path  in the system's narrow encoding: the ANSI code page on Windows
    /// @return 0; 1 when the file cannot be opened (the text is unchanged) or when reading fails (the text is
    ///         what was read so far)
    int ReadFile(const std::string& path);

    /// Replaces the text with `json`, unchanged.
    /// @return 0
    /// Throws std::bad_alloc when out of memory; the text is then unchanged.
    int Read(const std::string& json);

    /// Parses the first JSON value of the text and ignores what follows it.
    /// @param value  out: the document; after a syntax error, what was parsed so far
    /// @param error  out: "syntax error at line N near: " and the rest of that line; unchanged on success.
    ///               Also set for a number that overflows a double and, leaving `value` unchanged, for arrays
    ///               and objects nested more than 100 deep, picojson's limit for arrays.
    /// @return whether `error` is empty afterwards
    /// Throws std::bad_alloc when out of memory; `value` then holds what was parsed so far.
    bool getJsonValue(picojson::value& value, std::string& error);

private:
    std::string m_strJson;
};

}  // namespace velm
