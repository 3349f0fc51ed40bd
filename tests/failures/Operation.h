/// @file
/// What the libraries do, and what each of it makes of a failure.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "velm/core/ErrorCode.h"

namespace velm::test {

/// The outcome of an operation that lets std::bad_alloc pass.
constexpr long long kThrew = -1000;

/// The outcomes of what writes a text and gives no code: as it was, emptied, or the expected.
enum Written : long long { kOld, kEmpty, kNew };

inline long long Number(ErrorCode code) {
    return code.GetCode();
}
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
long long Number(T value) {
    return static_cast<long long>(value);
}

/// One run of an operation: what it prepares succeeds, and what it hands to the attempt may fail.
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

/// One of a class, or of what goes the same way.
struct Operation {
    std::string what;
    std::function<long long(const Attempt&)> run;
    long long outcome = 0;              ///< when nothing fails, and allowed when something does
    std::vector<long long> noMemory{};  ///< the outcomes when an allocation fails
    bool keeps = false;                 ///< takes memory for good
    int slowness = 1;                   ///< how many times as long as others it takes
};

const std::vector<Operation>& AllOperations();

/// Runs an operation; it must leave nothing open.
long long RunOne(const Operation& operation, const Attempt& attempt);

}  // namespace velm::test
