#include "Facts.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <thread>

#include "AdapterReport.h"
#include "Command.h"
#include "Environment.h"
#include "SystemReport.h"
#include "velm/core/Tick.h"
#include "velm/LocalMachineTime.h"
#include "velm/platform/SystemInfo.h"
#include "velm/Scheduling.h"
#include "velm/YuvToArgb.h"

namespace velmdiag::report {
namespace {

constexpr double kGibibyte = 1024.0 * 1024.0 * 1024.0;

// Variables that change how programs run. Not the whole environment, which may contain passwords.
constexpr const char* kVariables[] = {
    "OS",
    "PROCESSOR_ARCHITECTURE",
    "LANG",
    "LC_ALL",
    "TZ",
    "USERNAME",
    "USERPROFILE",
    "HOME",
    "TEMP",
    "TMPDIR",
    "PATH",
    "LD_LIBRARY_PATH",
    "LD_PRELOAD",
    "DISPLAY",
    "WAYLAND_DISPLAY",
    "WINEDEBUG",
    "WINEDLLOVERRIDES",
};

void AddText(Report& report, const char* key, const std::string& text) {
    if (text.empty()) {
        report.AddUnknown(key);
    } else {
        report.Add(key, text);
    }
}

Section System() {
    Report report;
    report.Add("system", velm::platform::SystemName());
    AddText(report, "processor", velm::platform::ProcessorName());
    report.Add("logical_processors", static_cast<long long>(std::thread::hardware_concurrency()));
    report.Add("memory", static_cast<double>(velm::platform::PhysicalMemory()) / kGibibyte, "GiB", 1);
    report.Add("picture_kernel", velm::GetYuvToArgbKernelName());
    report.Add("oem_code_page", static_cast<long long>(GetOEMCP()));
    report.Add("high_priority_granted", SchedulingProcess::SetPriorityHigh());
    SchedulingThread thread;
    report.Add("audio_task_granted", thread.StartThreadPriorityHigh());
    return {"system", "System", {report}, "", false};
}

/// The smallest step of the clock that was observed, and the cost of reading it.
Section Clock() {
    constexpr int kReadings = 100'000;
    const auto frequency = static_cast<double>(velm::Tick::GetFrequency());
    const unsigned long long start = velm::Tick::Get().GetCount();
    unsigned long long before = start;
    unsigned long long smallest = ~0ULL;
    for (int i = 0; i < kReadings; ++i) {
        const unsigned long long now = velm::Tick::Get().GetCount();
        if (now != before) {
            smallest = std::min(smallest, now - before);
        }
        before = now;
    }
    Report report;
    report.Add("source", velm::platform::ClockSource());
    report.Add("frequency", picojson::value(frequency),
               Grouped(static_cast<unsigned long long>(frequency)) + " Hz");
    AddTime(report, "resolution", 1e6 / frequency);
    AddTime(report, "smallest_step_seen", static_cast<double>(smallest) / frequency * 1e6);
    AddTime(report, "time_per_reading", static_cast<double>(before - start) / frequency * 1e6 / kReadings);
    AddCount(report, "milliseconds_since_start", velm::GetLocalMachineTime());
    return {"clock", "Clock", {report}, "", false};
}

Section Libraries() {
    Section section{"libraries", "Libraries", {}, "none", true};
    for (const char* const name : {VELM_UTIL_NAME, VELM_CORE_NAME}) {
        const velm::platform::LibraryFile file = velm::platform::FindLibrary(name);
        Report report;
        report.Add("name", name);
        AddText(report, "version", file.version);
        AddText(report, "path", file.path);
        section.items.push_back(report);
    }
    return section;
}

Section Displays() {
    Section section{"displays", "Displays", {}, "This system reports no displays.", true};
    for (const velm::platform::Display& display : velm::platform::Displays()) {
        Report report;
        report.Add("name", display.name);
        report.Add("description", display.description);
        report.Add("width", static_cast<long long>(display.width));
        report.Add("height", static_cast<long long>(display.height));
        if (display.refresh > 1) {
            report.Add("refresh_rate", static_cast<double>(display.refresh), "Hz", 0);
        } else {
            report.AddUnknown("refresh_rate");
        }
        report.Add("primary", display.primary);
        section.items.push_back(report);
    }
    return section;
}

Section Adapters(Document& document, const std::optional<std::string>& rulesPath) {
    Section section{"adapters", "Display adapters", {}, "", true};
    try {
        for (AdapterReport& adapter : ReportAdapters(std::nullopt, rulesPath)) {
            document.adaptersAccepted = document.adaptersAccepted && adapter.accepted;
            section.items.push_back(std::move(adapter.facts));
        }
    } catch (const Failure& failure) {
        section.ifEmpty = "None: " + failure.message + '.';
    }
    return section;
}

Section Paths() {
    Report report;
    AddPaths(report);
    std::error_code failed;
    const std::u8string temporary = std::filesystem::temp_directory_path(failed).u8string();
    report.Add("temporary_files",
               failed ? failed.message() : std::string(temporary.begin(), temporary.end()));
    return {"paths", "Paths", {report}, "", false};
}

Section Environment() {
    picojson::object values;
    std::vector<std::string> lines;
    for (const char* const name : kVariables) {
        if (const std::optional<std::string> value = Variable(name)) {
            values[name] = picojson::value(*value);
            lines.push_back(name + ('=' + *value));
        }
    }
    Report report;
    report.AddLines("variables", picojson::value(values), lines);
    return {"environment", "Environment", {report}, "", false};
}

}  // namespace

void AddFacts(Document& document, const std::optional<std::string>& rulesPath) {
    document.sections = {System(), Displays(),   Adapters(document, rulesPath), Clock(), Libraries(),
                         Paths(),  Environment()};
}

}  // namespace velmdiag::report
