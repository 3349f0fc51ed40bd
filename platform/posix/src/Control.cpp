#include "velm/posix/Control.h"

#include <utility>

#include "Intercept.h"

namespace velm::posix {

std::atomic<bool> g_watching{false};

bool MustFailWatched(const char* name) {
    const Locked<Settings> settings;
    if (settings->recording) {
        settings->calls.emplace_back(name);
    }
    const auto found = settings->failures.find(std::string_view(name));
    if (found == settings->failures.end()) {
        return false;
    }
    Settings::Failure& failure = found->second;
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
    Locked<Settings>()->failures[name] = {lastError, skip, count};
    g_watching = true;
}

void StartRecording() {
    const Locked<Settings> settings;
    settings->calls.clear();
    settings->shown.clear();
    settings->recording = true;
    g_watching = true;
}

std::vector<std::string> RecordedCalls() {
    return Locked<Settings>()->calls;
}

void RecordShown(ShownCall call) {
    const Locked<Settings> settings;
    if (settings->recording) {
        settings->shown.push_back(std::move(call));
    }
}

std::vector<ShownCall> ShownCalls() {
    return Locked<Settings>()->shown;
}

void SetDisplays(std::vector<Display> displays) {
    Locked<Settings>()->displays = std::move(displays);
}

void SetExecutablePath(const std::wstring& path) {
    Locked<Settings>()->executablePath = path;
}

void SetPerformanceCounter(unsigned long long count, unsigned long long frequency) {
    Locked<Settings>()->clock = {count, frequency};
}

void SetOemCodePage(UINT codePage) {
    Locked<Settings>()->oemCodePage = codePage;
}

void Reset() {
    g_watching = false;
    *Locked<Settings>() = {};
}

}  // namespace velm::posix
