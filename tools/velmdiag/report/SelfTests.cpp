#include "SelfTests.h"

#include <exception>

#include "Command.h"
#include "DeviceRounds.h"
#include "Interruption.h"
#include "velm/core/Tick.h"

namespace velmdiag::report {
namespace {

constexpr struct Family {
    const char* key;
    const char* title;
    std::string (*run)(SelfTest&);
} kFamilies[] = {
    {"audio", "Audio ring", TestRing},
    {"pictures", "Pictures", TestPictures},
    {"device", "Direct3D 9 device", TestDevice},
    {"links", "Links", TestLinks},
    {"settings", "Settings", TestSettings},
    {"text", "Text", TestText},
    {"processes", "Threads, watchdog", TestProcesses},
};

/// A message as a sentence: with a capital letter and a full stop.
std::string Sentence(std::string text) {
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z') {
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    }
    return text.ends_with('.') ? text : text + '.';
}

SelfTest Run(const Family& family) {
    SelfTest test;
    test.key = family.key;
    test.title = family.title;
    const unsigned long long start = velm::Tick::Get().GetCount();
    try {
        test.finding = family.run(test);
        test.outcome = Outcome::passed;
    } catch (const Failure& failure) {
        test.finding = failure.message;
        test.outcome = failure.exitStatus == kNotDone ? Outcome::notRun : Outcome::failed;
    } catch (const std::exception& exception) {
        test.finding = exception.what();
        test.outcome = Outcome::failed;
    }
    test.finding = Sentence(test.finding);
    test.seconds = SecondsSince(start);
    return test;
}

}  // namespace

std::vector<SelfTest> RunSelfTests(const std::function<void(const std::string&, std::size_t)>& onStart) {
    std::vector<SelfTest> tests;
    for (const Family& family : kFamilies) {
        onStart(family.title, tests.size() + 1);
        tests.push_back(Run(family));
        if (Interruption::Requested()) {
            throw Failure{"interrupted", Interruption::kExitStatus};
        }
    }
    return tests;
}

std::string TestDevice(SelfTest& test) {
    constexpr unsigned int kRounds = 3;
    const DeviceOutcome outcome = RunDeviceRounds(kRounds, false);
    AddDeviceOutcome(test.figures, kRounds, outcome);
    CheckDeviceReferences(outcome);
    return "The device was lost and recovered " + std::to_string(kRounds) + " times; all " +
           std::to_string(outcome.counts.picturesEqual) + " pictures read back as drawn.";
}

double SecondsSince(unsigned long long tickCount) {
    return static_cast<double>(velm::Tick::Get().GetCount() - tickCount) /
           static_cast<double>(velm::Tick::GetFrequency());
}

void Require(bool holds, const std::string& what) {
    if (!holds) {
        throw Failure{what};
    }
}

}  // namespace velmdiag::report
