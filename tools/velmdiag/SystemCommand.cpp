#include <windows.h>
#include <psapi.h>

#include <iomanip>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "Command.h"
#include "Help.h"
#include "Report.h"
#include "SystemReport.h"
#include "velm/core/ErrorRegistry.h"
#include "velm/LocalMachineTime.h"
#include "velm/platform/SystemInfo.h"
#include "velm/Scheduling.h"
#include "velm/WindowsUtil.h"

namespace velmdiag {
namespace {

void AddLibraries(Report& report) {
    picojson::array libraries;
    std::vector<std::string> lines;
    for (const char* const name : {VELM_UTIL_NAME, VELM_CORE_NAME}) {
        const velm::platform::LibraryFile file = velm::platform::FindLibrary(name);
        libraries.emplace_back(picojson::object{{"name", picojson::value(name)},
                                                {"version", picojson::value(file.version)},
                                                {"path", picojson::value(file.path)}});
        lines.push_back(std::string(name) + ' ' + file.version + "  " + file.path);
    }
    report.AddLines("libraries", picojson::value(libraries), lines);
}

void AddErrorCodes(Report& report) {
    picojson::array codes;
    std::vector<std::string> lines;
    for (const velm::ErrorCodeInfo& info : velm::GetRegisteredErrorCodes()) {
        codes.emplace_back(picojson::object{{"code", picojson::value(static_cast<double>(info.code))},
                                            {"facility", picojson::value(info.facility)},
                                            {"name", picojson::value(info.name)}});
        std::ostringstream line;
        line << "0x" << std::hex << std::uppercase << info.code << "  " << info.name;
        lines.push_back(line.str());
    }
    report.AddLines("error_codes", picojson::value(codes), lines);
}

void AddScreen(Report& report, const char* key, unsigned long stateFlags) {
    int width = 0;
    int height = 0;
    velm::WindowsUtil::GetMaxScreenSize(&width, &height, stateFlags);
    report.Add(key,
               picojson::value(picojson::object{{"width", picojson::value(static_cast<double>(width))},
                                                {"height", picojson::value(static_cast<double>(height))}}),
               width != 0 ? std::to_string(width) + " x " + std::to_string(height) : "none");
}

void AddMemory(Report& report) {
    constexpr double kMebibyte = 1024.0 * 1024.0;
    PROCESS_MEMORY_COUNTERS counters{};
    if (GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) {
        report.Add("working_set", static_cast<double>(counters.WorkingSetSize) / kMebibyte, "MiB", 1);
        report.Add("peak_working_set", static_cast<double>(counters.PeakWorkingSetSize) / kMebibyte, "MiB",
                   1);
        report.Add("private_memory", static_cast<double>(counters.PagefileUsage) / kMebibyte, "MiB", 1);
    }
}

int RunSystem(bool json) {
    Report report;
    report.Add("system", velm::platform::SystemName());
    AddLibraries(report);
    AddErrorCodes(report);
    AddPaths(report);
    AddScreen(report, "largest_screen", 0);
    AddScreen(report, "primary_screen", DISPLAY_DEVICE_PRIMARY_DEVICE);
    report.Add("oem_code_page", static_cast<long long>(GetOEMCP()));
    AddMemory(report);
    report.Add("milliseconds_since_start", static_cast<long long>(velm::GetLocalMachineTime()));
    report.Add("high_priority", SchedulingProcess::SetPriorityHigh());
    SchedulingThread thread;
    report.Add("audio_task", thread.StartThreadPriorityHigh());
    report.Print(json);
    return 0;
}

}  // namespace

void AddPaths(Report& report) {
    char executable[1000];
    if (velm::WindowsUtil::CallGetModuleFileName(nullptr, executable, sizeof executable) != 0) {
        report.Add("executable", executable);
    }
    std::string resources;
    const velm::ErrorCode result = velm::WindowsUtil::GetFullPathForResourcesDir(resources);
    report.Add("resources", result.IsFailed() ? Describe(result) : resources);
}

void AddSystemCommand(CLI::App& app, int& exitStatus) {
    const auto json = std::make_shared<bool>(false);
    CLI::App* const command = app.add_subcommand("system", "Shows what support asks for first");
    Explain(command,
            "Shows the libraries and the error codes that they registered, the executable and its "
            "resources folder, the screens, the OEM code page, this process's memory, the milliseconds "
            "since the machine started, and whether the system grants high priority and the multimedia "
            "scheduler's task \"Audio\".",
            "velmdiag system --json");
    command->add_flag("--json", *json, "print one JSON object; memory sizes are in MiB");
    command->callback([json, &exitStatus] { exitStatus = RunSystem(*json); });
}

}  // namespace velmdiag
