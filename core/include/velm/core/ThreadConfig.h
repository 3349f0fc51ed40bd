#pragma once

#include <string>

#include "velm/core/Export.h"

namespace velm {

/// The settings of a thread. Copying and SetName throw std::bad_alloc when memory runs out; the settings then
/// stay as they were.
class VELM_CORE_API ThreadConfig {
public:
    ThreadConfig();
    /// @{
    /// Copies the settings.
    ThreadConfig(const ThreadConfig& other);
    ThreadConfig& operator=(const ThreadConfig& other);
    /// @}
    ~ThreadConfig();

    /// Stores a copy of the name under which debuggers and profilers show the thread.
    /// @param name  NUL-terminated UTF-8; null counts as "". Systems may show only its beginning.
    void SetName(const char* name);

    /// The stored name, valid until the next SetName or the end of the object; "" at first.
    const char* GetName() const;

    /// Sets the size of the thread's stack in bytes; 0, the default, leaves it to the system.
    void SetStackSize(unsigned int bytes);
    unsigned int GetStackSize() const;  ///< in bytes; 0 for the system's choice

private:
    std::string m_name;
    unsigned int m_stackSize = 0;
};

}  // namespace velm
