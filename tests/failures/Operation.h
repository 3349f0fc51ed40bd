/// @file
/// What the libraries do, and what each of it makes of a failure.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "velm/core/ErrorCode.h"
#include "velm/posix/Control.h"

namespace velm::test {

/// Which allocations of the process fail: from the one of this number on, or that one only.
struct Shortage {
    long long from;
    bool once;
};
void BeginShortage(Shortage shortage);
/// @return whether an allocation failed
bool EndShortage();

/// The outcome of an operation that lets std::bad_alloc pass.
constexpr long long kThrew = -1000;

inline long long Number(ErrorCode code) {
    return code.GetCode();
}
inline long long Number(const volatile void* pointer) {
    return pointer != nullptr;
}
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
long long Number(T value) {
    return static_cast<long long>(value);
}

/// One run of an operation: what it prepares succeeds, and what it hands to the attempt may fail.
class Attempt {
public:
    explicit Attempt(Shortage shortage) : m_shortage(shortage), m_short(true) {}
    /// The call fails after `skip` others of its name.
    Attempt(const char* call, DWORD lastError, unsigned int skip)
        : m_call(call), m_lastError(lastError), m_skip(skip) {}

    template <typename Body>
    long long operator()(Body body) {
        long long outcome = kThrew;
        Begin();
        try {
            outcome = Number(body());
        } catch (const std::bad_alloc&) {
        }
        End();
        return outcome;
    }

    bool didFail = false;
    std::vector<std::string> calls;  ///< what was called, when no allocation was to fail

private:
    void Begin() {
        if (m_short) {
            BeginShortage(m_shortage);
        } else {
            posix::FailCall(m_call, m_lastError, m_skip);
            posix::StartRecording();
        }
    }
    void End() {
        if (m_short) {
            didFail = EndShortage();
        } else {
            calls = posix::RecordedCalls();
            posix::FailCall(m_call, 0, 0, 0);
        }
    }

    Shortage m_shortage{};
    bool m_short = false;
    const char* m_call = "";
    DWORD m_lastError = 0;
    unsigned int m_skip = 0;
};

struct Failure {
    const char* call;
    long long outcome;
    DWORD lastError = ERROR_GEN_FAILURE;
    unsigned int number = kEvery;  ///< which of the calls of the name

    static constexpr unsigned int kEvery = ~0U;
};

/// One of a class, or of what goes the same way.
struct Operation {
    const char* what;
    std::function<long long(Attempt&)> run;
    long long outcome = 0;              ///< when nothing fails, and allowed when something does
    std::vector<long long> noMemory{};  ///< the outcomes when an allocation fails
    std::vector<Failure> failures{};    ///< every call that it makes, and the outcome when that fails
    bool keeps = false;                 ///< takes memory for good
};

using Operations = std::vector<Operation>;

Operations AudioOperations();
Operations ConfigOperations();
Operations CoreOperations();
Operations FoundationOperations();
Operations GraphicsOperations();
Operations ThreadOperations();

// Texts that do not fit into a string object itself.
const std::string kText = "a text that is longer than a string object";
const std::wstring kWide(kText.begin(), kText.end());

/// An operation that gives a text and a code: when it fails, the text stays.
template <typename Text, typename Body>
auto Converts(const Text& expected, Body body) {
    return [=](Attempt& attempt) {
        const Text old(3, 'o');
        Text out = old;
        const long long code = attempt([&] { return body(out); });
        EXPECT_EQ(out, code == 0 ? expected : old);
        EXPECT_EQ(body(out), 0U) << "a second time";
        return code;
    };
}

/// An operation that needs nothing prepared.
template <typename Body>
auto Does(Body body) {
    return [=](Attempt& attempt) { return attempt(body); };
}

}  // namespace velm::test
