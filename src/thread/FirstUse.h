#pragma once

namespace velm {

/// An object of the library that exists from its first use until the library is unloaded. Those that exist
/// are then destroyed, the newest first, as a function's statics would be. Unlike those, they take no memory
/// at their first use: no guard to wait at, no entry in the runtime's list of destructors, so that first use
/// cannot fail. Threads: the first use must not race with another use of the same or another such object.
class FirstUseObject {
public:
    FirstUseObject(const FirstUseObject&) = delete;
    FirstUseObject& operator=(const FirstUseObject&) = delete;

    /// Destroys every object that exists.
    static void DestroyAll();

protected:
    using Destroy = void (*)(FirstUseObject&);

    constexpr explicit FirstUseObject(Destroy destroy) : m_destroy(destroy) {}
    ~FirstUseObject() = default;

    /// Adds this one to those that exist.
    void Register();

private:
    const Destroy m_destroy;
    FirstUseObject* m_older = nullptr;
};

/// Must be constinit.
template <typename T>
class FirstUse : public FirstUseObject {
public:
    constexpr FirstUse()
        : FirstUseObject([](FirstUseObject& object) { static_cast<FirstUse&>(object).m_object->~T(); }) {}

    /// @param build  constructs the object where it is told
    template <typename Build>
    T* Get(Build build) {
        if (m_object == nullptr) {
            m_object = build(static_cast<void*>(m_storage));
            Register();
        }
        return m_object;
    }

private:
    alignas(T) unsigned char m_storage[sizeof(T)] = {};
    T* m_object = nullptr;
};

}  // namespace velm
