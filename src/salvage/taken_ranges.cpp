// SPDX-License-Identifier: Apache-2.0
#include "taken_ranges.h"

#include <algorithm>
#include <iterator>

namespace trellant::salvage {

bool TakenRanges::isFree(const BentoRange& range) const {
    const auto behind = ends_.lower_bound(range.offset);
    return (behind == ends_.end() || behind->first - range.offset >= range.length) &&
           (behind == ends_.begin() || std::prev(behind)->second <= range.offset);
}

bool TakenRanges::take(std::span<const BentoRange> ranges) {
    for (std::size_t taken = 0; taken < ranges.size(); ++taken) {
        if (!isFree(ranges[taken])) {
            for (std::size_t i = 0; i < taken; ++i) {
                ends_.erase(ranges[i].offset);
            }
            return false;
        }
        ends_.emplace(ranges[taken].offset, ranges[taken].offset + ranges[taken].length);
    }
    return true;
}

std::optional<std::uint64_t> TakenRanges::endAt(std::uint64_t position) const {
    const auto behind = ends_.upper_bound(position);
    if (behind == ends_.begin() || std::prev(behind)->second <= position) {
        return std::nullopt;
    }
    return std::prev(behind)->second;
}

std::uint64_t TakenRanges::nextFrom(std::uint64_t position, std::uint64_t limit) const {
    const auto behind = ends_.lower_bound(position);
    return behind == ends_.end() ? limit : std::min(behind->first, limit);
}

}  // namespace trellant::salvage
