/// @file
/// The operations of the libraries, and their outcomes when an allocation or a call to Windows fails.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "velm/core/ErrorCode.h"

namespace velm::test {

/// The outcome of an operation that throws std::bad_alloc.
constexpr long long kThrew = -1000;

/// The outcomes of operations that write a text and return no code: unchanged, emptied, or as expected.
enum Written : long long { kOld, kEmpty, kNew };

inline long long Number(ErrorCode code) {
    return code.GetCode();
}
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
long long Number(T value) {
    return static_cast<long long>(value);
}

/// One run of an operation. Nothing fails during its preparation; things may fail in the body it passes on.
struct Attempt {
    std::function<void()> begin;
    std::function<void()> end;

    template <typename Body>
    long long operator()(Body body) const {
        long long outcome = kThrew;
        begin();
        try {
            outcome = Number(body());
        } catch (const std::bad_alloc&) {
        }
        end();
        return outcome;
    }
};

/// One per class, or per group of functions with the same code path.
struct Operation {
    std::string what;
    std::function<long long(const Attempt&)> run;
    long long outcome = 0;              ///< when nothing fails; always allowed
    std::vector<long long> noMemory{};  ///< the outcomes when an allocation fails
    bool keeps = false;                 ///< keeps its memory for good
    int slowness = 1;                   ///< run time compared with the others
};

const std::vector<Operation>& AllOperations();

/// Runs an operation; it must leave nothing open.
long long RunOne(const Operation& operation, const Attempt& attempt);

}  // namespace velm::test
