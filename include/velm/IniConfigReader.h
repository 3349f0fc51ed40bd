#pragma once

#include <string>

#include "velm/core/Export.h"

namespace velm {

/// Reads settings from INI files, as GetPrivateProfileString does. Every call reads the file again.
///
/// File, section and key names are in the OEM code page. A file name without a folder refers to the Windows
/// folder, not to the current one: write "./client.ini". A path of more than 260 characters is not found. A
/// file is read as UTF-16 if it begins with a byte-order mark, otherwise in the ANSI code page, which garbles
/// UTF-8 outside ASCII. (Wine and the Linux build also read UTF-8 with a byte-order mark.) `value` receives
/// the setting, or the default if the file, section or key is missing. It is unchanged if an argument cannot
/// be converted, and if std::bad_alloc is thrown.
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
