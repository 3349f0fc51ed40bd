#pragma once

#include <string>

#include "velm/core/Export.h"

namespace velm {

/// Reads settings from the environment of the process. A Visual C++ build reads the copy in the C runtime
/// that it shares with its caller: the environment at the start, and changes made through that runtime
/// (_putenv_s, _wputenv_s). Only a MinGW build also sees changes made through SetEnvironmentVariable alone.
/// Threads: any number at once.
class VELM_UTIL_API EnvConfigReader {
public:
    EnvConfigReader();
    /// @{
    /// Objects have no state.
    EnvConfigReader(const EnvConfigReader& other);
    EnvConfigReader& operator=(const EnvConfigReader& other);
    /// @}
    virtual ~EnvConfigReader();

    /// Reads one variable.
    /// @param name  in the OEM code page
    /// @param value  out: the value in UTF-8, "" for a variable that is set but empty; unchanged when the
    ///               variable is not set or anything fails
    void GetIfOk(const std::string& name, std::string& value);
};

}  // namespace velm
