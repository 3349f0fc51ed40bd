// Debian has no Google Benchmark for Windows: what it does for the Linux rows is done here by hand, with the
// performance counter.
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

double TimeTurn(const Contender& contender, std::size_t batches) {
    contender.prepare();
    contender.run(1);  // the caches are this contender's now
    const double start = Now();
    for (std::size_t i = 0; i < batches; ++i) {
        contender.run(contender.batch);
    }
    return (Now() - start) / static_cast<double>(batches * contender.batch);
}

}  // namespace

// The threads' own times have a resolution of milliseconds at best, so both clocks are the wall's.
std::vector<double> Measure(const std::vector<Contender>& contenders, const Options& options, Clock) {
    std::vector<std::size_t> batches;
    for (const Contender& contender : contenders) {
        const double once = std::max(TimeTurn(contender, 1), 1e-9) * static_cast<double>(contender.batch);
        batches.push_back(std::max<std::size_t>(1, static_cast<std::size_t>(options.turnSeconds / once)));
    }
    std::vector<std::vector<double>> turns(contenders.size());
    for (int round = 0; round < options.rounds; ++round) {
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            turns[i].push_back(TimeTurn(contenders[i], batches[i]));
        }
    }
    std::vector<double> medians;
    for (const std::vector<double>& own : turns) {
        medians.push_back(MedianOf(own));
    }
    return medians;
}

}  // namespace velm::bench
