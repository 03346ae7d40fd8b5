// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/free_numbers.h>

#include <algorithm>
#include <iterator>
#include <limits>

namespace trellant {

std::uint64_t FreeNumbers::lastOfSeries(std::uint64_t number) {
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t highest = 1;
    while (highest < number) {
        highest = highest == 1 ? 9 : highest > largest / 10 ? largest : highest * 10 + 9;
    }
    return highest;
}

std::string FreeNumbers::series(std::uint64_t number, const Name& name) {
    const std::uint64_t highest = lastOfSeries(number);
    // The number in front keeps a name apart that another one is with its number.
    return std::to_string(highest) + " " + name(highest);
}

std::uint64_t FreeNumbers::lengthen(Runs& runs, std::uint64_t first, std::uint64_t end,
                                    const Name& name, const IsTaken& isTaken) {
    auto run = runs.upper_bound(first);
    if (run == runs.begin() || std::prev(run)->second < first) {
        run = runs.emplace_hint(run, first, first);
    } else {
        --run;
    }
    std::uint64_t& next = run->second;
    while (next <= end) {
        const auto following = std::next(run);
        if (following != runs.end() && following->first == next) {
            next = following->second;
            runs.erase(following);
        } else if (isTaken(name(next))) {
            ++next;
        } else {
            break;
        }
    }
    return next;
}

std::optional<std::uint64_t> FreeNumbers::find(std::uint64_t first, std::uint64_t last,
                                               const Name& name, const IsTaken& isTaken) {
    while (first <= last) {
        const std::uint64_t end = std::min(lastOfSeries(first), last);
        const std::uint64_t free =
            lengthen(runsBySeries_[series(first, name)], first, end, name, isTaken);
        if (free <= end) {
            return free;
        }
        if (end == last) {
            break;
        }
        first = end + 1;
    }
    return std::nullopt;
}

}  // namespace trellant
