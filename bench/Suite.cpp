#include "Suite.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace velm::bench {
namespace {

constexpr double kNanoseconds = 1e9;
constexpr int kGrowthRounds = 7;

void Print(const picojson::object& row) {
    const auto text = [&row](const char* key) { return row.at(key).to_str(); };
    const std::string line = text("work") + " | " + text("peer");
    if (row.count("missing") != 0) {
        std::printf("missing   %s: %s\n", line.c_str(), text("missing").c_str());
        return;
    }
    std::printf("%8.2f  %s", row.at("figure").get<double>(), line.c_str());
    if (row.count("ours_ns") != 0) {
        std::printf("  %.0f : %.0f ns", row.at("ours_ns").get<double>(), row.at("peer_ns").get<double>());
    }
    if (row.count("runs") != 0) {
        std::printf("  runs:");
        for (const picojson::value& run : row.at("runs").get<picojson::array>()) {
            std::printf(" %.3g", run.get<double>());
        }
    }
    std::printf("\n");
}

/// "at least 0.85, measured 0.681"
std::string Figures(const char* bound, double required, double measured) {
    char text[64];
    std::snprintf(text, sizeof text, "%s %.3g, measured %.3g", bound, required, measured);
    return text;
}

}  // namespace

double MedianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void Suite::Require(const std::string& row, bool holds) {
    if (!holds && !m_options.isShort) {
        m_missed.push_back(row);
        m_failed = true;
    }
}

void Suite::RequireOneOf(const std::string& row, const Ratios& measured, const Ratios& least) {
    std::string all;
    bool holds = false;
    for (const auto& [peer, required] : least) {
        const auto found = measured.find(peer);
        if (found != measured.end()) {
            holds = holds || found->second >= required;
            all += (all.empty() ? "" : "; or ") + peer + ": " + Figures("at least", required, found->second);
        }
    }
    Require(row + " | " + all, holds || all.empty());
}

void Suite::PrintMissed() const {
    for (const std::string& row : m_missed) {
        std::fprintf(stderr, "velm_bench: target missed: %s\n", row.c_str());
    }
}

Ratios Suite::Compare(const std::string& family, const std::string& work, const Contender& ours,
                      const std::vector<Peer>& peers, Clock clock) {
    std::vector<Contender> contenders{ours};
    for (const Peer& peer : peers) {
        if (peer.contender.run != nullptr) {
            contenders.push_back(peer.contender);
        }
    }
    const std::vector<double> seconds = Measure(contenders, m_options, clock);
    Ratios ratios;
    std::size_t next = 1;
    for (const Peer& peer : peers) {
        const bool missing = peer.contender.run == nullptr;
        Record(family, work, seconds[0], peer, missing ? 0 : seconds[next]);
        if (!missing) {
            ratios[peer.contender.name] = seconds[next] / seconds[0];
            ++next;
        }
    }
    return ratios;
}

void Suite::Record(const std::string& family, const std::string& work, double ourSeconds, const Peer& peer,
                   double peerSeconds) {
    const std::string& name = peer.contender.name;
    picojson::object row;
    row["family"] = picojson::value(family);
    row["work"] = picojson::value(work);
    row["peer"] = picojson::value(name);
    row["limit"] = picojson::value(peer.isLimit);
    if (!peer.missingPackage.empty()) {
        row["missing"] = picojson::value(peer.missingPackage);
    } else {
        const double figure = peerSeconds / ourSeconds;
        row["figure"] = picojson::value(figure);
        row["ours_ns"] = picojson::value(ourSeconds * kNanoseconds);
        row["peer_ns"] = picojson::value(peerSeconds * kNanoseconds);
        Require(family + ", " + work + " | " + name + ": " + Figures("at least", peer.required, figure),
                figure >= peer.required);
    }
    Add(row);
}

void Suite::RecordFigure(const std::string& family, const std::string& work, const std::string& against,
                         double figure, double most, const std::string& unit) {
    picojson::object row;
    row["family"] = picojson::value(family);
    row["work"] = picojson::value(work);
    row["peer"] = picojson::value(against);
    row["limit"] = picojson::value(false);
    row["figure"] = picojson::value(figure);
    row["unit"] = picojson::value(unit);
    Require(family + ", " + work + ": " + Figures("at most", most, figure), most == 0 || figure <= most);
    Add(row);
}

void Suite::Add(const picojson::object& row) {
    Print(row);
    std::fflush(stdout);
    m_rows.emplace_back(row);
}

void Suite::RecordRuns(const std::string& family, const std::string& work, const std::string& against,
                       const Runs& runs, Bound bound, double required, const std::string& unit) {
    picojson::object row;
    row["family"] = picojson::value(family);
    row["work"] = picojson::value(work);
    row["peer"] = picojson::value(against);
    row["limit"] = picojson::value(runs.isLimit);
    if (runs.figures.empty()) {
        row["missing"] = picojson::value(runs.missingPackage);
    } else {
        const auto [least, most] = std::ranges::minmax(runs.figures);
        const bool isAtMost = bound == Bound::kAtMost;
        const double figure = runs.together.value_or(isAtMost ? most : least);
        row["figure"] = picojson::value(figure);
        row["runs"] = picojson::value(picojson::array(runs.figures.begin(), runs.figures.end()));
        Require(family + ", " + work + " | " + against + ": " +
                    Figures(isAtMost ? "at most" : "at least", required, figure),
                required == 0 || (isAtMost ? figure <= required : figure >= required));
    }
    if (!unit.empty()) {
        row["unit"] = picojson::value(unit);
    }
    if (runs.oursSeconds != 0) {
        row["ours_ns"] = picojson::value(runs.oursSeconds * kNanoseconds);
        row["peer_ns"] = picojson::value(runs.peerSeconds * kNanoseconds);
    }
    Add(row);
}

void Suite::MeasureCurve(const std::string& curve, const std::string& unit, Growth growth,
                         const std::vector<double>& sizes,
                         const std::function<std::vector<Contender>(double size)>& make, double enough,
                         Clock clock) {
    Options options = m_options;
    options.rounds = std::min(options.rounds, kGrowthRounds);
    picojson::object series;
    std::printf("          growth: %s\n", curve.c_str());
    for (const double size : sizes) {
        const std::vector<Contender> contenders = make(size);
        const std::vector<double> seconds = Measure(contenders, options, clock);
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            picojson::value& points = series[contenders[i].name];
            if (points.is<picojson::null>()) {
                points = picojson::value(picojson::array{});
            }
            points.get<picojson::array>().emplace_back(
                picojson::array{picojson::value(size), picojson::value(seconds[i] * kNanoseconds)});
        }
        if (m_options.isShort && size >= enough) {
            break;
        }
    }
    picojson::object kept;
    kept["unit"] = picojson::value(unit);
    kept["grows"] = picojson::value(growth == Growth::kWithSize);
    kept["series"] = picojson::value(series);
    m_curves[curve] = picojson::value(kept);
}

void Suite::RequireGrowth(const std::string& curve, const std::string& series, double from, double to,
                          double most, const std::string& limit) {
    if (m_options.isShort) {
        return;
    }
    const auto costAt = [&](const std::string& of, double size) {
        for (const picojson::value& point : m_curves.at(curve).get("series").get(of).get<picojson::array>()) {
            if (point.get(0).get<double>() == size) {
                return point.get(1).get<double>() / size;
            }
        }
        return 0.0;
    };
    const auto growthOf = [&](const std::string& of) { return costAt(of, to) / costAt(of, from); };
    const double growth = growthOf(series);
    if (!limit.empty()) {
        most = std::max(most, 1.1 * growthOf(limit));
    }
    Require(curve + ", cost per unit at the size " + std::to_string(static_cast<long long>(to)) +
                " over that at " + std::to_string(static_cast<long long>(from)) + ": " +
                Figures("at most", most, growth),
            growth <= most);
}

bool Suite::Write(const std::string& path) const {
    picojson::object results;
    results["rounds"] = picojson::value(static_cast<double>(m_options.rounds));
    results["rows"] = picojson::value(m_rows);
    results["curves"] = picojson::value(m_curves);
    std::ofstream file(path);
    file << picojson::value(results).serialize(true) << std::flush;
    if (!file) {
        std::fprintf(stderr, "velm_bench: %s cannot be written\n", path.c_str());
    }
    return file.good();
}

}  // namespace velm::bench
