// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/free_numbers.h>

#include <algorithm>
#include <limits>

namespace trellant {

namespace {

/// The highest number with as many digits. 1 stands apart: it is the name without a number.
std::uint64_t highestLike(std::uint64_t number) {
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t highest = 1;
    while (highest < number) {
        highest = highest == 1 ? 9 : highest > largest / 10 ? largest : highest * 10 + 9;
    }
    return highest;
}

}  // namespace

std::optional<std::uint64_t> FreeNumbers::find(std::uint64_t first, std::uint64_t last,
                                               const Name& name, const IsTaken& isTaken) {
    while (first <= last) {
        const std::uint64_t highest = highestLike(first);
        // The number in front keeps a name apart that another one is with its number.
        const std::string key = std::to_string(highest) + " " + name(highest);
        Run& run = runs_.try_emplace(key, Run{first, first}).first->second;
        if (first < run.first || first > run.next) {
            run = {first, first};
        }
        const std::uint64_t end = std::min(highest, last);
        for (; run.next <= end; ++run.next) {
            if (!isTaken(name(run.next))) {
                return run.next;
            }
        }
        if (end == last) {
            break;
        }
        first = end + 1;
    }
    return std::nullopt;
}

}  // namespace trellant
