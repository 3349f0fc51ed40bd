#pragma once

#include "velm/UtilErrorCode.h"

namespace velm {

/// Holds a handle to the current process, through which its memory counters can be read.
///
/// A copy of an initialized object opens its own handle; if that fails, the copy is not initialized.
///
/// Threads: one at a time. The first GetInstance call must not race with another.
class VELM_UTIL_API MemoryInfo {
public:
    /// Returns the process-wide instance, which lives until the library is unloaded.
    static MemoryInfo* GetInstance();

    MemoryInfo();
    /// @{
    /// Opens a handle if the other is initialized. Assignment closes an open handle first.
    MemoryInfo(const MemoryInfo& other);
    MemoryInfo& operator=(const MemoryInfo& other);
    /// @}

    /// Closes the handle.
    ~MemoryInfo();

    /// Opens a handle to the process. Leaks a handle that is still open: call Finalize first.
    /// @param name  ignored
    /// @return 0; 0xFFFFFFFF when the system returns no handle
    ErrorCode Initialize(const char* name);

    /// Reads the memory counters, if initialized, and discards them.
    /// @param label  ignored
    void Check(const char* label);

    /// Closes the handle, if one is open.
    void Finalize();

private:
    int mInitialized;
    void* mProcess;
};

}  // namespace velm
