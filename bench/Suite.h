/// @file
/// The rows and curves of the benchmarks, independent of how they are measured.
#pragma once

#include <picojson.h>

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velm::bench {

/// One implementation of a piece of work.
struct Contender {
    std::string name;
    std::function<void(std::size_t times)> run;  // does the work `times` times
    std::function<void()> prepare = [] {};       // before each round, not timed
    std::size_t batch = 1;                       // the value of `times` in each call
};

/// A contender that repeats `work`. The loop is inside `run`, so that short work does not pay for an indirect
/// call each time.
template <typename Work>
Contender Repeat(std::string name, Work work, std::size_t batch = 1) {
    return {.name = std::move(name),
            .run =
                [work](std::size_t times) {
                    for (; times != 0; --times) {
                        work();
                    }
                },
            .batch = batch};
}

/// The batch for work that takes nanoseconds.
constexpr std::size_t kShort = 256;

/// What our implementation is compared with.
struct Peer {
    Contender contender;           // without `run` if it is missing
    double required = 0;           // the target: the minimum ratio of the peer's time to ours; 0 for none
    std::string missingPackage{};  // the package that provides a missing peer
    bool isLimit = false;          // a lower bound for the time, not another implementation
};

/// The ratios of the peers' times to ours, by name. Missing peers have none.
using Ratios = std::map<std::string, double>;

/// A lower bound for the time of some work.
inline Peer LimitOf(Contender contender, double required = 0) {
    return {.contender = std::move(contender), .required = required, .isLimit = true};
}

inline Peer Missing(std::string name, std::string package, double required = 0) {
    return {.contender = {.name = std::move(name), .run = nullptr},
            .required = required,
            .missingPackage = std::move(package)};
}

/// CPU time of this thread, or wall-clock time where other threads or the file system do part of the work.
enum class Clock { kThread, kWall };

/// Which side of its target a figure must be on.
enum class Bound { kAtLeast, kAtMost };

/// A measurement that was run several times.
struct Runs {
    std::vector<double> figures{};  // one per run
    double oursSeconds = 0;         // means over all runs, where the figures are ratios of times
    double peerSeconds = 0;
    std::optional<double> together{};  // the figure of all runs together, if that must meet the target
    std::string missingPackage{};      // the package that provides a missing peer; there are no figures then
    bool isLimit = false;              // the peer is a lower bound for the time
};

enum class Growth { kWithSize, kNone };

struct Options {
    int rounds = 25;
    double roundSeconds = 0.01;
    bool isShort = false;  // runs every case once, on a small amount of work, only to check that it runs
    std::string family;    // only this one, unless empty
};

class Suite {
public:
    explicit Suite(Options options) : m_options(std::move(options)) {}

    bool IsShort() const { return m_options.isShort; }
    int Rounds() const { return m_options.rounds; }

    /// Records that a case failed, so that the program fails at the end.
    void Fail() { m_failed = true; }
    bool HasFailed() const { return m_failed; }

    /// Fails the run unless the condition holds, except for a short run, whose figures mean nothing.
    /// @param row  the row and its target
    void Require(const std::string& row, bool holds);

    /// Requires that at least one of several targets is met, for work with more than one possible bottleneck.
    /// Missing peers do not count; if all are missing, nothing is required.
    void RequireOneOf(const std::string& row, const Ratios& measured, const Ratios& least);

    /// Prints every row that misses its target.
    void PrintMissed() const;

    /// Measures ours and its peers interleaved; prints and records a row per peer.
    Ratios Compare(const std::string& family, const std::string& work, const Contender& ours,
                   const std::vector<Peer>& peers, Clock clock = Clock::kThread);

    /// Records a row that was not measured by Compare.
    void Record(const std::string& family, const std::string& work, double ourSeconds, const Peer& peer,
                double peerSeconds);

    /// Records a figure that is not a ratio of times. Its target is to be at most `most`, unless that is 0.
    void RecordFigure(const std::string& family, const std::string& work, const std::string& against,
                      double figure, double most, const std::string& unit);

    /// Records the figures of several runs. The worst one must meet the target, or all runs together.
    void RecordRuns(const std::string& family, const std::string& work, const std::string& against,
                    const Runs& runs, Bound bound, double required, const std::string& unit = "");

    /// Measures work of growing size. Its time should grow in proportion to the size or, for a single
    /// operation on a larger structure, not at all. `make` creates the contenders for a size, which exist
    /// while that size is measured. A short run stops at the first size of at least `enough`.
    void MeasureCurve(const std::string& curve, const std::string& unit, Growth growth,
                      const std::vector<double>& sizes,
                      const std::function<std::vector<Contender>(double size)>& make, double enough,
                      Clock clock = Clock::kThread);

    /// Requires that a series of a measured curve costs at most `most` times as much per unit at size `to` as
    /// at size `from`, or that it grows by at most 1.1 times as much as a limit in the same curve.
    void RequireGrowth(const std::string& curve, const std::string& series, double from, double to,
                       double most, const std::string& limit = "");

    /// Writes everything recorded as JSON; false if that fails.
    bool Write(const std::string& path) const;

private:
    void Add(const picojson::object& row);

    Options m_options;
    bool m_failed = false;
    std::vector<std::string> m_missed;
    picojson::array m_rows;
    picojson::object m_curves;
};

/// Measures the contenders, interleaved.
/// @return seconds per run of each contender, as the median of the rounds
std::vector<double> Measure(const std::vector<Contender>& contenders, const Options& options, Clock clock);

double MedianOf(std::vector<double> values);

/// Keeps the compiler from dropping the computation of the value.
template <typename T>
void Keep(const T& value) {
    asm volatile("" : : "r,m"(value) : "memory");
}

}  // namespace velm::bench
