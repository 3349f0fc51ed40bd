#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "Families.h"

namespace velm::bench {
namespace {

int Usage() {
    std::fprintf(
        stderr,
        "usage: velm_bench [--rounds N] [--family NAME] [--json FILE] [--short]\n"
        "Measures the libraries against their peers, interleaved; each figure is the median of all rounds.\n"
        "Fails if a row misses its target, and names the row.\n"
        "--short runs every case once on a small amount of work; its figures mean nothing, so\n"
        "targets do not apply.\n"
        "Families:");
    for (const Family& family : GetFamilies()) {
        std::fprintf(stderr, " %s", family.name);
    }
    std::fprintf(stderr, "\n");
    return 2;
}

bool IsFamily(std::string_view name) {
    for (const Family& family : GetFamilies()) {
        if (family.name == name) {
            return true;
        }
    }
    return false;
}

int Run(const Options& options, const std::string& json) {
    Suite suite(options);
    for (const Family& family : GetFamilies()) {
        if (options.family.empty() || options.family == family.name) {
            std::printf("== %s\n", family.name);
            family.run(suite);
        }
    }
    suite.PrintMissed();
    return (json.empty() || suite.Write(json)) && !suite.HasFailed() ? 0 : 1;
}

}  // namespace
}  // namespace velm::bench

int main(int argc, char** argv) {
    using namespace velm::bench;

    Options options;
    std::string json;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        const char* const value = i + 1 < argc ? argv[i + 1] : nullptr;
        if (argument == "--short") {
            options.isShort = true;
            options.rounds = 1;
            options.roundSeconds = 1e-6;
        } else if (argument == "--rounds" && value != nullptr && std::atoi(value) > 0) {
            options.rounds = std::atoi(argv[++i]);
        } else if (argument == "--family" && value != nullptr && IsFamily(value)) {
            options.family = argv[++i];
        } else if (argument == "--json" && value != nullptr) {
            json = argv[++i];
        } else {
            return Usage();
        }
    }
    return Run(options, json);
}
