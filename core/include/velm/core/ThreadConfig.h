#pragma once

#include <string>

#include "velm/core/Export.h"

namespace velm {

/// The name and stack size of a thread. Copying and SetName throw std::bad_alloc when out of memory and then
/// change nothing.
/// Threads: one at a time.
class VELM_CORE_API ThreadConfig {
public:
    ThreadConfig();
    /// @{
    /// Copies the settings.
    ThreadConfig(const ThreadConfig& other);
    ThreadConfig& operator=(const ThreadConfig& other);
    /// @}
    ~ThreadConfig();

    /// Sets the name that debuggers and profilers show for the thread.
    /// @param name  NUL-terminated UTF-8, copied; null counts as "". The system may show only its beginning.
    void SetName(const char* name);

    /// Returns the name, valid until the next SetName or the object's destruction; "" by default.
    const char* GetName() const;

    /// Sets the thread's stack size in bytes; 0, the default, means the system's default.
    void SetStackSize(unsigned int bytes);
    unsigned int GetStackSize() const;  ///< in bytes; 0 means the system's default

private:
    std::string m_name;
    unsigned int m_stackSize = 0;
};

}  // namespace velm
