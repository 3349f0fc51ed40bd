/// @file
/// The rows and curves of the benchmarks, whatever measures them.
#pragma once

#include <picojson.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace velm::bench {

/// One way to do a piece of work.
struct Contender {
    std::string name;
    std::function<void(std::size_t times)> run;  // does the work so many times
    std::function<void()> prepare = [] {};       // before each turn, not timed
    std::size_t batch = 1;                       // `run` is called for so many times at once
};

/// The loop is part of what is called, so that a call costs short work nothing.
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

/// A batch for work of nanoseconds.
constexpr std::size_t kShort = 256;

/// What ours is held against.
struct Peer {
    Contender contender;  // without `run`: missing
    double required = 0;  // how many times as fast ours is to be; 0: no figure is required
    std::string lacks{};  // the package that a missing one comes with
};

inline Peer Missing(std::string name, std::string package, double required = 0) {
    return {.contender = {.name = std::move(name), .run = nullptr},
            .required = required,
            .lacks = std::move(package)};
}

/// Whose time counts: this thread's, or the wall's where several threads or the file system work.
enum class Clock { kThread, kWall };

enum class Growth { kWithSize, kNone };

struct Options {
    int rounds = 25;
    double turnSeconds = 0.01;
    bool shortly = false;  // every case once, on little work: that it runs is all that is asked
    std::string family;    // only this one, when not empty
};

class Suite {
public:
    explicit Suite(Options options) : m_options(std::move(options)) {}

    bool IsShort() const { return m_options.shortly; }
    int Rounds() const { return m_options.rounds; }

    /// Says that a case did not work; the program fails in the end.
    void Fail() { m_failed = true; }
    bool HasFailed() const { return m_failed; }

    /// Measures ours and its peers in turns; prints, and keeps, a line for each peer.
    void Compare(const std::string& family, const std::string& work, const Contender& ours,
                 const std::vector<Peer>& peers, Clock clock = Clock::kThread);

    /// Keeps a figure that is no ratio of times, and is to be `most` at most.
    void Limit(const std::string& family, const std::string& work, const std::string& against, double figure,
               double most, const std::string& unit);

    /// Measures work of growing size, whose time is to grow with the size or, like that of a step on a larger
    /// structure, not at all. `make` gives the contenders of a size, which live while that size is
    /// measured. A short run stops at the first size of at least `enough`.
    void Grow(const std::string& curve, const std::string& unit, Growth growth,
              const std::vector<double>& sizes,
              const std::function<std::vector<Contender>(double size)>& make, double enough,
              Clock clock = Clock::kThread);

    /// Everything kept, as JSON; false when it cannot be written.
    bool Write(const std::string& path) const;

private:
    Options m_options;
    bool m_failed = false;
    picojson::array m_rows;
    picojson::object m_curves;
};

/// Lets the contenders take turns, interleaved.
/// @return seconds of one run, for each the median of the rounds
std::vector<double> Measure(const std::vector<Contender>& contenders, const Options& options, Clock clock);

double MedianOf(std::vector<double> values);

/// Keeps the compiler from dropping what computes the value.
template <typename T>
void Keep(const T& value) {
    asm volatile("" : : "r,m"(value) : "memory");
}

}  // namespace velm::bench
