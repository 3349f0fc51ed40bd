#include "velm/posix/Control.h"

#include <map>
#include <mutex>
#include <utility>

#include "Intercept.h"

namespace velm::posix {
namespace {

struct Failure {
    DWORD lastError = 0;
    unsigned int skip = 0;
    unsigned int count = 0;
};

struct Control {
    std::mutex mutex;
    std::map<std::string, Failure, std::less<>> failures;
    std::vector<std::string> calls;
    std::vector<ShownCall> shown;
    bool recording = false;
};

Control& TheControl() {
    static Control& control = *new Control;  // for good: libraries call in as they are unloaded
    return control;
}

}  // namespace

std::atomic<bool> g_watching{false};

bool MustFailWatched(const char* name) {
    Control& control = TheControl();
    const std::lock_guard lock(control.mutex);
    if (control.recording) {
        control.calls.emplace_back(name);
    }
    const auto found = control.failures.find(std::string_view(name));
    if (found == control.failures.end()) {
        return false;
    }
    Failure& failure = found->second;
    if (failure.skip != 0) {
        --failure.skip;
        return false;
    }
    if (failure.count == 0) {
        return false;
    }
    --failure.count;
    SetLastError(failure.lastError);
    return true;
}

void FailCall(const char* name, DWORD lastError, unsigned int skip, unsigned int count) {
    Control& control = TheControl();
    const std::lock_guard lock(control.mutex);
    control.failures[name] = {lastError, skip, count};
    g_watching = true;
}

void StartRecording() {
    Control& control = TheControl();
    const std::lock_guard lock(control.mutex);
    control.calls.clear();
    control.shown.clear();
    control.recording = true;
    g_watching = true;
}

std::vector<std::string> RecordedCalls() {
    Control& control = TheControl();
    const std::lock_guard lock(control.mutex);
    return control.calls;
}

void RecordShown(ShownCall call) {
    Control& control = TheControl();
    const std::lock_guard lock(control.mutex);
    if (control.recording) {
        control.shown.push_back(std::move(call));
    }
}

std::vector<ShownCall> ShownCalls() {
    Control& control = TheControl();
    const std::lock_guard lock(control.mutex);
    return control.shown;
}

void Reset() {
    Control& control = TheControl();
    {
        const std::lock_guard lock(control.mutex);
        g_watching = false;
        control.failures.clear();
        control.calls.clear();
        control.shown.clear();
        control.recording = false;
    }
    ResetClock();
    ResetDisplays();
    ResetModules();
    ResetProcess();
    ResetText();
}

}  // namespace velm::posix
