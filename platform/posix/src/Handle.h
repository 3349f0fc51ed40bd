/// @file
/// The object behind a HANDLE.
#pragma once

#include <windows.h>

#include <atomic>

namespace velm::posix {

/// A kernel object. A handle is a pointer to one; CloseHandle deletes it.
class Object {
public:
    Object() { ++s_count; }
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() { --s_count; }

    static unsigned int Count() { return s_count; }

private:
    static inline std::atomic<unsigned int> s_count{0};
};

/// Returns the object behind a handle; null for an invalid handle or one of another type.
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
