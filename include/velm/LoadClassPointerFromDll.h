#pragma once

#include "velm/core/Export.h"

struct HINSTANCE__;

namespace velm {

/// Loads a plug-in library and obtains one object from it. The library exports, under C linkage,
///
///     AllocateClass(void** object)   stores a new object, or null
///     ReleaseClass(void** object)    releases it
///
/// whose results are not used.
///
/// A copy is empty: module and object stay with the source, which alone releases them.
/// Threads: one at a time.
class VELM_UTIL_API LoadClassPointerFromDll {
public:
    LoadClassPointerFromDll();
    /// Empty.
    LoadClassPointerFromDll(const LoadClassPointerFromDll& other);
    /// Terminates first.
    LoadClassPointerFromDll& operator=(const LoadClassPointerFromDll& other);

    /// Terminates.
    ~LoadClassPointerFromDll();

    /// Loads the library and obtains the object. What the object held before is released first.
    /// @param dllPath  UTF-8
    /// @param classPointer  receives the object, valid until Terminate; null on failure
    /// @return 0; 1 when the library was not loaded, or an argument is null; 2 when it has no AllocateClass;
    ///         3 when that gave no object. After 2 and 3 the library stays loaded until Terminate.
    int Initialize(const char* dllPath, void** classPointer);

    /// Releases the object and unloads the library, as far as there are any.
    /// @return 0
    int Terminate();

private:
    void Create();
    void Destory();

    int mInitialized;
    HINSTANCE__* mModule;
    void* mClass;
};

}  // namespace velm
