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
    const double required = row.at("required").get<double>();
    const double figure = row.at("figure").get<double>();
    const bool most = row.at("sense").to_str() == "most";
    const bool met = required == 0 || (most ? figure <= required : figure >= required);
    std::printf("%8.2f  %s", figure, line.c_str());
    if (required != 0) {
        std::printf(" (at %s %g)%s", most ? "most" : "least", required, met ? "" : "  MISSED");
    }
    if (row.count("ours_ns") != 0) {
        std::printf("  %.0f : %.0f ns", row.at("ours_ns").get<double>(), row.at("peer_ns").get<double>());
    }
    std::printf("\n");
}

}  // namespace

double MedianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void Suite::Compare(const std::string& family, const std::string& work, const Contender& ours,
                    const std::vector<Peer>& peers, Clock clock) {
    std::vector<Contender> contenders{ours};
    for (const Peer& peer : peers) {
        if (peer.contender.run != nullptr) {
            contenders.push_back(peer.contender);
        }
    }
    const std::vector<double> seconds = Measure(contenders, m_options, clock);
    std::size_t next = 1;
    for (const Peer& peer : peers) {
        picojson::object row;
        row["family"] = picojson::value(family);
        row["work"] = picojson::value(work);
        row["peer"] = picojson::value(peer.contender.name);
        row["required"] = picojson::value(peer.required);
        row["sense"] = picojson::value("least");
        if (peer.contender.run == nullptr) {
            row["missing"] = picojson::value(peer.lacks);
        } else {
            row["figure"] = picojson::value(seconds[next] / seconds[0]);
            row["ours_ns"] = picojson::value(seconds[0] * kNanoseconds);
            row["peer_ns"] = picojson::value(seconds[next] * kNanoseconds);
            ++next;
        }
        Print(row);
        m_rows.emplace_back(row);
    }
    std::fflush(stdout);
}

void Suite::Limit(const std::string& family, const std::string& work, const std::string& against,
                  double figure, double most, const std::string& unit) {
    picojson::object row;
    row["family"] = picojson::value(family);
    row["work"] = picojson::value(work);
    row["peer"] = picojson::value(against);
    row["required"] = picojson::value(most);
    row["sense"] = picojson::value("most");
    row["figure"] = picojson::value(figure);
    row["unit"] = picojson::value(unit);
    Print(row);
    m_rows.emplace_back(row);
}

void Suite::Grow(const std::string& curve, const std::string& unit, Growth growth,
                 const std::vector<double>& sizes,
                 const std::function<std::vector<Contender>(double size)>& make, double enough, Clock clock) {
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
        if (m_options.shortly && size >= enough) {
            break;
        }
    }
    picojson::object kept;
    kept["unit"] = picojson::value(unit);
    kept["grows"] = picojson::value(growth == Growth::kWithSize);
    kept["series"] = picojson::value(series);
    m_curves[curve] = picojson::value(kept);
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
