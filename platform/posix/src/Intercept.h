/// @file
/// Shared by all implementations of Windows calls: failure injection for tests, and process-wide state.
#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <new>
#include <optional>

#include "velm/posix/Control.h"

namespace velm::posix {

/// Locks and gives access to process-wide state. The state is never destroyed, because libraries and static
/// objects still make calls while the process exits.
template <typename State>
class Locked {
public:
    State* operator->() const { return &m_state; }
    State& operator*() const { return m_state; }
    std::unique_lock<std::mutex>& Lock() { return m_lock; }

private:
    static inline std::mutex s_mutex;

    static State& Instance() {
        static State& state = *new State;
        return state;
    }

    std::unique_lock<std::mutex> m_lock{s_mutex};
    State& m_state = Instance();
};

/// The state behind Control.h.
struct Settings {
    struct Failure {
        DWORD lastError = 0;
        unsigned int skip = 0;
        unsigned int count = 0;
    };
    struct Reading {
        unsigned long long count = 0;
        unsigned long long frequency = 0;
    };

    std::map<std::string, Failure, std::less<>> failures;
    bool recording = false;
    std::vector<std::string> calls;
    std::vector<ShownCall> shown;
    std::vector<Display> displays;
    std::wstring executablePath;  // empty for the real one
    std::optional<Reading> clock;
    UINT oemCodePage = 437;
    DWORD priorityClass = NORMAL_PRIORITY_CLASS;
};

/// Whether a test makes calls fail or records them.
extern std::atomic<bool> g_watching;

bool MustFailWatched(const char* name);

/// Nesting depth of WithinSystem on this thread.
inline thread_local int t_withinSystem = 0;

/// Every Windows call first calls this with its own name, and fails if it returns true; the last error is
/// then set. Calls from within WithinSystem are not the library's own: they are neither recorded nor failed.
inline bool MustFail(const char* name) {
    return g_watching.load(std::memory_order_relaxed) && t_withinSystem == 0 && MustFailWatched(name);
}

/// Runs the body of a Windows call that allocates memory or makes further calls. When memory runs out,
/// the call fails as on Windows instead of throwing.
template <typename Result, typename Body>
Result WithinSystem(Result failure, Body body) {
    const struct Depth {
        Depth() { ++t_withinSystem; }
        ~Depth() { --t_withinSystem; }
    } depth;
    try {
        return body();
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return failure;
    }
}

/// Stores a call's arguments for ShownCalls while recording.
void RecordShown(ShownCall call);

}  // namespace velm::posix
