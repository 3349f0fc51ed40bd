#include <windows.h>

#include <atomic>
#include <iomanip>
#include <iostream>
#include <memory>
#include <optional>
#include <type_traits>

#include "Command.h"
#include "Duration.h"
#include "Help.h"
#include "Report.h"
#include "velm/core/Thread.h"
#include "velm/LocalMachineTime.h"
#include "velm/ThreadCaller.h"
#include "velm/Watchdog.h"

namespace velmdiag {
namespace {

struct WatchOptions {
    unsigned int duration = 5000;  // this and the next two in milliseconds
    unsigned int stallAfter = 0;   // 0 for never
    unsigned int period = 500;
    int exitCode = 16;
    bool json = false;
};

struct WindowDestroyer {
    void operator()(HWND window) const { DestroyWindow(window); }
};
using UniqueWindow = std::unique_ptr<std::remove_pointer_t<HWND>, WindowDestroyer>;

/// A thread that makes progress every few milliseconds until it is stopped or stalls.
class Worker {
public:
    explicit Worker(unsigned int stallAfter)
        : m_stallAt(stallAfter != 0 ? velm::GetLocalMachineTime() + stallAfter : ~0ULL) {
        m_thread.Start([](void* self) { return static_cast<Worker*>(self)->Work(); }, this, "worker");
        if (m_thread.GetState() != 0) {
            throw Failure{"the worker thread cannot be started"};
        }
    }
    ~Worker() {
        m_end = true;
        m_thread.Stop();
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    unsigned long long Steps() const { return m_steps; }

private:
    int Work() {
        while (!m_end) {
            if (velm::GetLocalMachineTime() < m_stallAt) {
                ++m_steps;
            }
            velm::Thread::Sleep(5);
        }
        return 0;
    }

    unsigned long long m_stallAt;
    std::atomic<unsigned long long> m_steps{0};
    std::atomic<bool> m_end{false};
    velm::ThreadCaller m_thread;
};

/// Reports the worker as alive if it has made progress since the last tick. Records each tick, and
/// shows it if wanted.
class ProgressChecker : public velm::WatchdogChecker {
public:
    ProgressChecker(const Worker& worker, bool show)
        : m_worker(worker), m_show(show), m_start(velm::GetLocalMachineTime()) {}

    bool IsActive() override {
        const unsigned long long steps = m_worker.Steps() - m_seen;
        m_seen += steps;
        const double seconds = static_cast<double>(velm::GetLocalMachineTime() - m_start) / 1000.0;
        m_ticks.emplace_back(picojson::object{{"seconds", picojson::value(seconds)},
                                              {"alive", picojson::value(steps != 0)},
                                              {"steps", picojson::value(static_cast<double>(steps))}});
        if (m_show) {
            std::cout << "tick " << std::setw(3) << m_ticks.size() << std::fixed << std::setprecision(2)
                      << std::setw(8) << seconds << " s  " << (steps != 0 ? "alive, " : "stalled, ") << steps
                      << " steps" << std::endl;
        }
        return steps != 0;
    }

    const picojson::array& Ticks() const { return m_ticks; }

private:
    const Worker& m_worker;
    bool m_show;
    unsigned long long m_start;
    unsigned long long m_seen = 0;
    picojson::array m_ticks;
};

/// Runs the message loop until a quit message or for the duration.
/// @return the exit code of the quit message; none when the time is up
std::optional<int> RunLoop(HWND window, unsigned int milliseconds) {
    constexpr UINT_PTR kEndTimer = 1;
    if (SetTimer(window, kEndTimer, milliseconds, nullptr) == 0) {
        throw Failure{"a timer cannot be created"};
    }
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (message.hwnd == window && message.message == WM_TIMER && message.wParam == kEndTimer) {
            return std::nullopt;
        }
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}

int RunWatch(const WatchOptions& options) {
    const UniqueWindow window(
        CreateWindowExW(0, L"STATIC", L"velmdiag watch", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr));
    if (window == nullptr) {
        throw Failure{"a window cannot be created"};
    }
    const Worker worker(options.stallAfter);
    ProgressChecker checker(worker, !options.json);
    velm::Watchdog* const watchdog = velm::Watchdog::GetInstance();
    watchdog->SetElapse(options.period);
    watchdog->SetExitCode(options.exitCode);
    const velm::ErrorCode result = watchdog->Start(window.get(), &checker);
    if (result.IsFailed()) {
        throw Failure{std::string("the watchdog cannot be started: ") + Describe(result)};
    }
    const std::optional<int> exitCode = RunLoop(window.get(), options.duration);
    watchdog->Stop();
    if (options.json) {
        Report report;
        report.Add("ticks", picojson::value(checker.Ticks()), "");
        report.Add("ended_by_the_watchdog", exitCode.has_value());
        report.Add("exit_code", static_cast<long long>(exitCode.value_or(0)));
        report.Print(true);
    } else if (exitCode) {
        std::cout << "the watchdog ended the message loop with " << *exitCode << '\n';
    } else {
        std::cout << "time is up, nothing stalled\n";
    }
    return exitCode.value_or(0);
}

}  // namespace

void AddWatchCommand(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<WatchOptions>();
    CLI::App* const command = app.add_subcommand("watch", "Watches a worker thread with a watchdog");
    Explain(command,
            "Opens a window, starts a worker thread and a watchdog that checks its progress, and "
            "shows each check. When the worker stalls, the watchdog ends the message loop, and the "
            "program ends with the watchdog's exit code. A DURATION is a number with ms, s, m or h, such as "
            "1.5s; seconds without a unit.",
            "velmdiag watch --for 6s --stall-after 2s");
    AddDuration(*command, "--for", options->duration, "how long to watch");
    AddDuration(*command, "--stall-after", options->stallAfter, "when the worker stalls; never if not given");
    AddDuration(*command, "--period", options->period, "time between two checks");
    command
        ->add_option("--exit-code", options->exitCode,
                     "the exit code with which the watchdog ends the message loop")
        ->capture_default_str();
    command->add_flag("--json", options->json, "print one JSON object at the end");
    command->callback([options, &exitStatus] { exitStatus = RunWatch(*options); });
}

}  // namespace velmdiag
