/// @file
/// Measures contenders against the first of them: in turns, so that other work on the machine meets
/// all of them alike.
#pragma once

#include <time.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace velm::bench {

struct Contender {
    std::string name;
    std::function<void()> run;
    std::function<void()> prepare = [] {};  // before each turn, not timed
};

struct Result {
    double seconds;  // of one run, the median of the turns
    double ratio;    // the first contender's time over this one's, the median of the rounds
};

inline double MedianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// What this thread has used of the processor, in seconds; other programs' turns do not count.
inline double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// The time of one turn of `repetitions` runs, in seconds per run.
inline double TimeTurn(const Contender& contender, int repetitions) {
    contender.prepare();
    contender.run();  // the caches are this contender's now
    const double start = ThreadSeconds();
    for (int i = 0; i < repetitions; ++i) {
        contender.run();
    }
    return (ThreadSeconds() - start) / repetitions;
}

/// Every contender runs once per round, for about `turnSeconds`.
inline std::vector<Result> Measure(const std::vector<Contender>& contenders, int rounds,
                                   double turnSeconds = 0.002) {
    const double once = TimeTurn(contenders.front(), 1);
    const int repetitions = std::max(1, static_cast<int>(turnSeconds / once));
    std::vector<std::vector<double>> times(contenders.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            times[i].push_back(TimeTurn(contenders[i], repetitions));
        }
    }
    std::vector<Result> results;
    for (const std::vector<double>& own : times) {
        std::vector<double> ratios;
        for (std::size_t round = 0; round < own.size(); ++round) {
            ratios.push_back(times.front()[round] / own[round]);
        }
        results.push_back({MedianOf(own), MedianOf(ratios)});
    }
    return results;
}

}  // namespace velm::bench
