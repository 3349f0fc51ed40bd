#include "Suggestion.h"

#include <algorithm>
#include <cstddef>

namespace velmdiag {
namespace {

constexpr std::size_t kLongestWord = 64;

/// The restricted Damerau-Levenshtein distance: the number of letters to insert, delete, replace or swap with
/// their neighbour.
std::size_t DistanceOf(const std::string& from, const std::string& to) {
    std::vector<std::vector<std::size_t>> distance(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
    for (std::size_t i = 0; i <= from.size(); ++i) {
        for (std::size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                distance[i][j] = i + j;
                continue;
            }
            const std::size_t differs = from[i - 1] != to[j - 1];
            distance[i][j] =
                std::min({distance[i - 1][j] + 1, distance[i][j - 1] + 1, distance[i - 1][j - 1] + differs});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
                distance[i][j] = std::min(distance[i][j], distance[i - 2][j - 2] + 1);
            }
        }
    }
    return distance[from.size()][to.size()];
}

}  // namespace

std::string Suggest(const std::string& word, const std::vector<std::string>& candidates) {
    std::string best;
    if (word.size() > kLongestWord) {
        return best;
    }
    std::size_t least = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& candidate : candidates) {
        const std::size_t distance = DistanceOf(word, candidate);
        if (distance < least) {
            least = distance;
            best = candidate;
        }
    }
    return best;
}

}  // namespace velmdiag
