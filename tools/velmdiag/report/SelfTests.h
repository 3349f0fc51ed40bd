/// @file
/// A self-test for each family.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Document.h"

namespace velmdiag::report {

/// Runs every self-test. A test that throws has failed; if it throws Failure with kNotDone, it could not run.
/// Throws Failure if the user interrupts.
/// @param onStart  called with a test's title and its number, from 1, before it starts
std::vector<SelfTest> RunSelfTests(const std::function<void(const std::string&, std::size_t)>& onStart);

// Each fills in figures and plots and returns the finding. Throws Failure if the test fails or cannot run.

/// Frames through the ring, from one thread to another.
std::string TestRing(SelfTest& test);
/// Pictures of many sizes, compared with the documented formula.
std::string TestPictures(SelfTest& test);
/// Losses of a Direct3D 9 device.
std::string TestDevice(SelfTest& test);
/// Good and forged links.
std::string TestLinks(SelfTest& test);
/// Settings written and read back.
std::string TestSettings(SelfTest& test);
/// Every character to UTF-16 and back.
std::string TestText(SelfTest& test);
/// Threads that wake each other, and a watchdog over a stalled loop.
std::string TestProcesses(SelfTest& test);

/// Seconds since the clock had this reading.
double SecondsSince(unsigned long long tickCount);

/// Throws Failure with the message `what` unless the condition holds.
void Require(bool holds, const std::string& what);

}  // namespace velmdiag::report
