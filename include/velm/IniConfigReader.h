#pragma once

#include <string>

#include "velm/core/Export.h"

namespace velm {

/// Reads settings from INI files, by Windows' rules for them. Every call opens and reads its file anew.
///
/// The names of files, sections and keys are in the OEM code page. A file name without a folder is looked for
/// in the folder of Windows. A name that cannot be converted leaves `value` as it is; otherwise `value` is
/// written, with the default when the file, the section or the key is missing. When memory runs out for a
/// temporary text, std::bad_alloc passes to the caller and `value` stays as it is.
/// Threads: any number at once.
class VELM_UTIL_API IniConfigReader {
public:
    IniConfigReader();
    /// @{
    /// There is nothing in an object to copy.
    IniConfigReader(const IniConfigReader& other);
    IniConfigReader& operator=(const IniConfigReader& other);
    /// @}
    virtual ~IniConfigReader();

    /// Reads a number: the digits that the setting begins with, after a sign and a prefix such as 0x, if any.
    void GetIfOk(const std::string& fileName, const std::string& section, const std::string& key,
                 int defaultValue, int& value);

    /// Reads a text.
    /// @param defaultText  in the OEM code page
    /// @param value  receives the setting in UTF-8, cut to its first 1023 UTF-16 units
    void GetIfOk(const std::string& fileName, const std::string& section, const std::string& key,
                 const std::string& defaultText, std::string& value);
};

}  // namespace velm
