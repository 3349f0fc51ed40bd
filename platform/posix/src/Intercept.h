/// @file
/// What the stand-ins share: the check that lets a test make a call fail, and the state of the process.
#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <new>
#include <optional>

#include "velm/posix/Control.h"

namespace velm::posix {

/// State that the stand-ins share, held by one thread at a time. It is never destroyed: libraries and static
/// objects of programs call in as the process ends.
template <typename State>
class Locked {
public:
    State* operator->() const { return &m_state; }
    State& operator*() const { return m_state; }
    std::unique_lock<std::mutex>& Lock() { return m_lock; }

private:
    static inline std::mutex s_mutex;

    static State& TheState() {
        static State& state = *new State;
        return state;
    }

    std::unique_lock<std::mutex> m_lock{s_mutex};
    State& m_state = TheState();
};

/// What tests set and ask for through Control.h.
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
    std::wstring executablePath;  // empty for the true one
    std::optional<Reading> clock;
    UINT oemCodePage = 437;
    DWORD priorityClass = NORMAL_PRIORITY_CLASS;
};

/// Whether a test makes calls fail or records them.
extern std::atomic<bool> g_watching;

bool MustFailWatched(const char* name);

/// How many stand-ins the thread is inside of.
inline thread_local int t_withinSystem = 0;

/// Every stand-in asks this first, with its own name, and fails when told to. The last error is then set
/// already. The calls that stand-ins make themselves are not the library's: they are neither recorded nor
/// failed.
inline bool MustFail(const char* name) {
    return g_watching.load(std::memory_order_relaxed) && t_withinSystem == 0 && MustFailWatched(name);
}

/// Runs the body of a stand-in that allocates or makes calls itself. Memory that runs out fails the call, as
/// on Windows, instead of leaving it as an exception.
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

/// Keeps what a call was handed, for ShownCalls, while calls are recorded.
void RecordShown(ShownCall call);

}  // namespace velm::posix
