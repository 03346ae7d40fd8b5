// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/nearest_word.h>

#include <algorithm>
#include <cstddef>

namespace trellant {

namespace {

/// Nobody types more of a command; what is longer is not looked at.
constexpr std::size_t longestWord = 64;

std::size_t distance(std::string_view left, std::string_view right) {
    const std::size_t width = right.size() + 1;
    // distances[i * width + j]: of the first i letters of one and the first j of the other.
    std::vector<std::size_t> distances((left.size() + 1) * width);
    for (std::size_t i = 0; i <= left.size(); ++i) {
        for (std::size_t j = 0; j <= right.size(); ++j) {
            std::size_t& here = distances[i * width + j];
            if (i == 0 || j == 0) {
                here = std::max(i, j);
                continue;
            }
            const std::size_t change = left[i - 1] == right[j - 1] ? 0 : 1;
            here = std::min({distances[(i - 1) * width + j] + 1, distances[i * width + j - 1] + 1,
                             distances[(i - 1) * width + j - 1] + change});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
                here = std::min(here, distances[(i - 2) * width + j - 2] + 1);
            }
        }
    }
    return distances.back();
}

}  // namespace

std::optional<std::string> nearestWord(std::string_view typed,
                                       const std::vector<std::string>& words) {
    std::optional<std::string> nearest;
    std::size_t least = 0;
    if (typed.size() > longestWord) {
        return nearest;
    }
    for (const std::string& word : words) {
        const std::size_t changes = distance(typed, word);
        const bool isNear = changes * 3 <= std::max(typed.size(), word.size());
        if (isNear && (!nearest || changes < least)) {
            nearest = word;
            least = changes;
        }
    }
    return nearest;
}

}  // namespace trellant
