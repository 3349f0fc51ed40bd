#pragma once

#include "velm/UtilErrorCode.h"

namespace velm {

/// Holds a handle to the process through which its memory counters can be read.
///
/// A copy of an initialised object opens a handle of its own; if the system refuses, it is not initialised.
///
/// Threads: one at a time. The first GetInstance must not race with another call of it.
class VELM_UTIL_API MemoryInfo {
public:
    /// The instance of the process. It lives until the library is unloaded.
    static MemoryInfo* GetInstance();

    MemoryInfo();
    /// @{
    /// Opens a handle of its own when the other is initialised.
    MemoryInfo(const MemoryInfo& other);
    MemoryInfo& operator=(const MemoryInfo& other);
    /// @}

    /// Closes the handle.
    ~MemoryInfo();

    /// Opens the process. A handle that is open already is not closed: call Finalize in between.
    /// @param name  not used
    /// @return 0; 0xFFFFFFFF when the system refuses
    ErrorCode Initialize(const char* name);

    /// Reads the memory counters, once initialised, and reports them nowhere.
    /// @param label  not used
    void Check(const char* label);

    /// Closes the handle, if one is open.
    void Finalize();

private:
    int mInitialized;
    void* mProcess;
};

}  // namespace velm
