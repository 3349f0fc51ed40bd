// Does what Google Benchmark does on Linux, with the performance counter: Debian has no Google Benchmark for
// Windows.
#include <windows.h>

#include <algorithm>

#include "Suite.h"

namespace velm::bench {
namespace {

double Now() {
    LARGE_INTEGER count;
    LARGE_INTEGER frequency;
    QueryPerformanceCounter(&count);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

double TimeRound(const Contender& contender, std::size_t batches) {
    contender.prepare();
    contender.run(1);  // warms the caches
    const double start = Now();
    for (std::size_t i = 0; i < batches; ++i) {
        contender.run(contender.batch);
    }
    return (Now() - start) / static_cast<double>(batches * contender.batch);
}

}  // namespace

// Thread times have a resolution of milliseconds at best, so both clocks are wall-clock time.
std::vector<double> Measure(const std::vector<Contender>& contenders, const Options& options, Clock) {
    std::vector<std::size_t> batches;
    for (const Contender& contender : contenders) {
        const double once = std::max(TimeRound(contender, 1), 1e-9) * static_cast<double>(contender.batch);
        batches.push_back(std::max<std::size_t>(1, static_cast<std::size_t>(options.roundSeconds / once)));
    }
    std::vector<std::vector<double>> times(contenders.size());
    for (int round = 0; round < options.rounds; ++round) {
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            times[i].push_back(TimeRound(contenders[i], batches[i]));
        }
    }
    std::vector<double> medians;
    for (const std::vector<double>& own : times) {
        medians.push_back(MedianOf(own));
    }
    return medians;
}

}  // namespace velm::bench
