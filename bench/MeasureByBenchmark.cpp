// Google Benchmark finds out how often the work fits a turn, mixes the turns of all contenders and takes the
// time.
#include <benchmark/benchmark.h>

#include <map>

#include "Suite.h"

namespace velm::bench {
namespace {

/// Keeps the times of the turns and prints nothing.
class TurnReporter : public benchmark::BenchmarkReporter {
public:
    explicit TurnReporter(Clock clock) : m_clock(clock) {}

    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                const double seconds =
                    m_clock == Clock::kThread ? run.cpu_accumulated_time : run.real_accumulated_time;
                m_turns[run.run_name.function_name].push_back(seconds / static_cast<double>(run.iterations));
            }
        }
    }

    double Median(const std::string& name) const { return MedianOf(m_turns.at(name)); }

private:
    Clock m_clock;
    std::map<std::string, std::vector<double>> m_turns;
};

void Configure(const Options& options) {
    std::vector<std::string> arguments{"velm_bench", "--benchmark_enable_random_interleaving=true",
                                       "--benchmark_repetitions=" + std::to_string(options.rounds),
                                       "--benchmark_min_time=" + std::to_string(options.turnSeconds)};
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    int count = static_cast<int>(pointers.size());
    benchmark::Initialize(&count, pointers.data());
}

}  // namespace

std::vector<double> Measure(const std::vector<Contender>& contenders, const Options& options, Clock clock) {
    Configure(options);
    for (const Contender& contender : contenders) {
        auto* const entry =
            benchmark::RegisterBenchmark(contender.name.c_str(), [&contender](benchmark::State& state) {
                contender.prepare();
                contender.run(1);  // the caches are this contender's now
                while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(contender.batch))) {
                    contender.run(contender.batch);
                }
            });
        if (clock == Clock::kWall) {
            entry->UseRealTime();
        }
    }
    TurnReporter reporter(clock);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::ClearRegisteredBenchmarks();
    std::vector<double> medians;
    for (const Contender& contender : contenders) {
        medians.push_back(reporter.Median(contender.name));
    }
    return medians;
}

}  // namespace velm::bench
