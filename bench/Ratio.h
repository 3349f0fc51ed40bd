/// @file
/// Runs the benchmarks of a program in interleaved rounds and prints how their medians compare.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace velm::bench {

/// The benchmark `ours` is to be at least `wanted` times as fast as `other`.
struct Ratio {
    const char* ours;
    const char* other;
    double wanted;
};

/// Prints as usual and keeps the medians of the processor time.
class MedianReporter : public benchmark::ConsoleReporter {
public:
    MedianReporter() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
                m_medians[run.run_name.function_name + (run.run_name.args.empty() ? "" : "/") +
                          run.run_name.args] = run.GetAdjustedCPUTime();
            }
        }
    }

    /// 0 where the benchmark did not run.
    double MedianOf(const std::string& name) const {
        const auto found = m_medians.find(name);
        return found != m_medians.end() ? found->second : 0.0;
    }

private:
    std::map<std::string, double> m_medians;
};

/// A program's main function. Options of Google Benchmark override the rounds.
/// @return 0; 1 when a ratio is below what is wanted; 2 for wrong usage
inline int RunAndCompare(int argc, char** argv, const std::vector<Ratio>& ratios) {
    std::vector<char*> arguments(argv, argv + argc);
    char interleaved[] = "--benchmark_enable_random_interleaving=true";
    char rounds[] = "--benchmark_repetitions=15";
    char shortly[] = "--benchmark_min_time=0.02";
    char medians[] = "--benchmark_report_aggregates_only=true";
    arguments.insert(arguments.begin() + 1, {interleaved, rounds, shortly, medians});
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 2;
    }
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    int status = 0;
    for (const Ratio& ratio : ratios) {
        const double ours = reporter.MedianOf(ratio.ours);
        const double other = reporter.MedianOf(ratio.other);
        if (ours > 0.0 && other > 0.0) {
            const bool reached = other / ours >= ratio.wanted;
            status = reached ? status : 1;
            std::printf("%-16s is %8.2f times as fast as %-16s (wanted: %6.2f)%s\n", ratio.ours, other / ours,
                        ratio.other, ratio.wanted, reached ? "" : "  BELOW");
        }
    }
    return status;
}

}  // namespace velm::bench
