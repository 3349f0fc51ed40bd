#pragma once

#include "velm/core/Export.h"

struct HINSTANCE__;

namespace velm {

/// Loads a plug-in library and creates one object with it. The library exports, with C linkage,
///
///     AllocateClass(void** object)   stores a new object, or null
///     ReleaseClass(void** object)    releases it
///
/// Their return values are ignored.
///
/// A copy is empty: library and object remain with the source, which alone releases them.
/// Threads: one at a time.
class VELM_UTIL_API LoadClassPointerFromDll {
public:
    LoadClassPointerFromDll();
    /// Starts empty.
    LoadClassPointerFromDll(const LoadClassPointerFromDll& other);
    /// Calls Terminate, unless assigned to itself; copies nothing.
    LoadClassPointerFromDll& operator=(const LoadClassPointerFromDll& other);

    /// Calls Terminate.
    ~LoadClassPointerFromDll();

    /// Loads the library and creates the object. Calls Terminate first.
    /// @param dllPath  UTF-8
    /// @param classPointer  out: the plug-in's object, valid until Terminate, which releases it; null on
    ///                      failure
    /// @return 0; 1 when the library cannot be loaded or an argument is null; 2 when it does not export
    ///         AllocateClass; 3 when AllocateClass stored null. After 2 and 3 the library stays loaded until
    ///         Terminate.
    int Initialize(const char* dllPath, void** classPointer);

    /// Releases the object and unloads the library, if there are any.
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
