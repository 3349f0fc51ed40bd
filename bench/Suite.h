/// @file
/// The rows and curves of the benchmarks, independent of what measures them.
#pragma once

#include <picojson.h>

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace velm::bench {

/// One way to do a piece of work.
struct Contender {
    std::string name;
    std::function<void(std::size_t times)> run;  // does the work `times` times
    std::function<void()> prepare = [] {};       // before each round, not timed
    std::size_t batch = 1;                       // the `times` of each call of `run`
};

/// The loop is inside the callable, so that short work does not pay for an indirect call each time.
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

/// What ours is compared with.
struct Peer {
    Contender contender;  // without `run` if it is missing
    double required = 0;  // the least ratio of the peer's time to ours, or the run fails; 0: nothing required
    std::string lacks{};  // the package that provides a missing peer
    bool isLimit = false;  // not another implementation, but what the work takes at least
};

/// The ratios of the peers' times to ours, by name. Missing peers have none.
using Ratios = std::map<std::string, double>;

/// Work that nothing could do in less time.
inline Peer LimitOf(Contender contender, double required = 0) {
    return {.contender = std::move(contender), .required = required, .isLimit = true};
}

inline Peer Missing(std::string name, std::string package, double required = 0) {
    return {.contender = {.name = std::move(name), .run = nullptr},
            .required = required,
            .lacks = std::move(package)};
}

/// CPU time of this thread, or wall-clock time where other threads or the file system do part of the work.
enum class Clock { kThread, kWall };

/// Which side of its target a figure must be on.
enum class Sense { kLeast, kMost };

/// A measurement that was run several times.
struct Runs {
    std::vector<double> figures;  // one of each run
    double oursSeconds = 0;       // means over all runs, where the figures are ratios of times
    double peerSeconds = 0;
    std::string lacks{};  // the package that provides a missing peer; there are no figures then
};

enum class Growth { kWithSize, kNone };

struct Options {
    int rounds = 25;
    double roundSeconds = 0.01;
    bool shortly = false;  // every case once, on a small amount of work: only checks that it runs
    std::string family;    // only this one, unless empty
};

class Suite {
public:
    explicit Suite(Options options) : m_options(std::move(options)) {}

    bool IsShort() const { return m_options.shortly; }
    int Rounds() const { return m_options.rounds; }

    /// Records that a case did not work, so that the program fails at the end.
    void Fail() { m_failed = true; }
    bool HasFailed() const { return m_failed; }

    /// Fails the run unless the condition holds, except for a short run, whose figures mean nothing.
    /// @param row  names the row and says what is required of it
    void Require(const std::string& row, bool holds);

    /// Requires one of several ratios; for work that either of two things may hold back. Missing peers do
    /// not count, and if all are missing, nothing is required.
    void RequireOneOf(const std::string& row, const Ratios& measured, const Ratios& least);

    /// Prints every row that misses what is required of it.
    void PrintMissed() const;

    /// Measures ours and its peers interleaved; prints and records a row per peer.
    Ratios Compare(const std::string& family, const std::string& work, const Contender& ours,
                   const std::vector<Peer>& peers, Clock clock = Clock::kThread);

    /// Records a row that was measured by other means than Compare.
    void Record(const std::string& family, const std::string& work, double ourSeconds, const Peer& peer,
                double peerSeconds);

    /// Records a figure that is not a ratio of times; required to be at most `most`, unless that is 0.
    void Limit(const std::string& family, const std::string& work, const std::string& against, double figure,
               double most, const std::string& unit);

    /// Records the worst of several runs, which must meet the target, and all of them.
    void Repeated(const std::string& family, const std::string& work, const std::string& against,
                  const Runs& runs, Sense sense, double required, const std::string& unit = "");

    /// Measures work of growing size. Its time should grow in proportion to the size or, for a single
    /// operation on a larger structure, not at all. `make` creates the contenders for a size, which live
    /// while that size is measured. A short run stops at the first size of at least `enough`.
    void Grow(const std::string& curve, const std::string& unit, Growth growth,
              const std::vector<double>& sizes,
              const std::function<std::vector<Contender>(double size)>& make, double enough,
              Clock clock = Clock::kThread);

    /// Requires that a series of a measured curve costs at most `most` times as much per unit at size `to` as
    /// at size `from`.
    void RequireGrowth(const std::string& curve, const std::string& series, double from, double to,
                       double most);

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
