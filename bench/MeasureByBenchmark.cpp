// Google Benchmark picks the number of iterations per round, interleaves the rounds of all contenders and
// times them.
#include <benchmark/benchmark.h>

#include <map>

#include "Suite.h"

namespace velm::bench {
namespace {

/// Collects the time of every round; prints nothing.
class RoundReporter : public benchmark::BenchmarkReporter {
public:
    explicit RoundReporter(Clock clock) : m_clock(clock) {}

    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                const double seconds =
                    m_clock == Clock::kThread ? run.cpu_accumulated_time : run.real_accumulated_time;
                m_rounds[run.run_name.function_name].push_back(seconds / static_cast<double>(run.iterations));
            }
        }
    }

    double Median(const std::string& name) const { return MedianOf(m_rounds.at(name)); }

private:
    Clock m_clock;
    std::map<std::string, std::vector<double>> m_rounds;
};

void Configure(const Options& options) {
    std::vector<std::string> arguments{"velm_bench", "--benchmark_enable_random_interleaving=true",
                                       "--benchmark_repetitions=" + std::to_string(options.rounds),
                                       "--benchmark_min_time=" + std::to_string(options.roundSeconds)};
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
                contender.run(1);  // warms the caches
                while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(contender.batch))) {
                    contender.run(contender.batch);
                }
            });
        if (clock == Clock::kWall) {
            entry->UseRealTime();
        }
    }
    RoundReporter reporter(clock);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::ClearRegisteredBenchmarks();
    std::vector<double> medians;
    for (const Contender& contender : contenders) {
        medians.push_back(reporter.Median(contender.name));
    }
    return medians;
}

}  // namespace velm::bench
