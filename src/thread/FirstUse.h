#pragma once

namespace velm {

/// Base of the objects that are created on first use and destroyed when the library is unloaded, newest
/// first, like function-local statics. Unlike those, they allocate nothing, neither for a guard nor for the
/// runtime's list of destructors, so the first use cannot fail.
/// Threads: the first use must not race with any use of this or another such object.
class FirstUseObject {
public:
    FirstUseObject(const FirstUseObject&) = delete;
    FirstUseObject& operator=(const FirstUseObject&) = delete;

    /// Destroys every object created so far.
    static void DestroyAll();

protected:
    using Destroy = void (*)(FirstUseObject&);

    constexpr explicit FirstUseObject(Destroy destroy) : m_destroy(destroy) {}
    ~FirstUseObject() = default;

    /// Adds the object to those that DestroyAll destroys.
    void Register();

private:
    const Destroy m_destroy;
    FirstUseObject* m_older = nullptr;
};

/// Storage for one object of type T, created on first use. Declare it constinit.
template <typename T>
class FirstUse : public FirstUseObject {
public:
    constexpr FirstUse()
        : FirstUseObject([](FirstUseObject& object) { static_cast<FirstUse&>(object).m_object->~T(); }) {}

    /// Returns the object, created by the first call.
    /// @param build  constructs a T at the address it is given and returns it
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
