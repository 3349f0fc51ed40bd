/// @file
/// What a HANDLE points to.
#pragma once

#include <windows.h>

namespace velm::posix {

/// A kernel object. A handle is a pointer to one; CloseHandle deletes it.
class Object {
public:
    virtual ~Object() = default;
};

/// The object behind a handle, or null when the handle is none or of another type.
template <typename T>
T* FromHandle(HANDLE handle) {
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE) {
        return nullptr;
    }
    return dynamic_cast<T*>(static_cast<Object*>(handle));
}

inline HANDLE ToHandle(Object* object) {
    return object;
}

}  // namespace velm::posix
