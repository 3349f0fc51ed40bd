#pragma once

#include <string>

#include "velm/core/Export.h"

namespace velm {

/// Reads settings from INI files, as GetPrivateProfileString does. Every call reads the file again.
///
/// File, section and key names are in the OEM code page. A file name without a folder refers to the Windows
/// folder, not to the current one: write "./client.ini". A path of more than 260 characters is not found. The
/// text of a file is UTF-16 if it begins with a byte-order mark, otherwise in the ANSI code page: UTF-8 comes
/// out wrong outside ASCII (with a mark of its own, Wine and the Linux build read it). `value` receives the
/// setting, or the default when the file, section or key is missing; it is unchanged when an argument cannot
/// be converted, and when std::bad_alloc is thrown for lack of memory.
/// Threads: any.
class VELM_UTIL_API IniConfigReader {
public:
    IniConfigReader();
    /// @{
    /// Objects have no state.
    IniConfigReader(const IniConfigReader& other);
    IniConfigReader& operator=(const IniConfigReader& other);
    /// @}
    virtual ~IniConfigReader();

    /// Reads an integer: the leading digits of the setting, after an optional sign and a prefix such as 0x.
    void GetIfOk(const std::string& fileName, const std::string& section, const std::string& key,
                 int defaultValue, int& value);

    /// Reads a string.
    /// @param defaultText  in the OEM code page
    /// @param value  out: the setting in UTF-8, truncated to its first 1023 UTF-16 units
    void GetIfOk(const std::string& fileName, const std::string& section, const std::string& key,
                 const std::string& defaultText, std::string& value);
};

}  // namespace velm
