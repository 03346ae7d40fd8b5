// SPDX-License-Identifier: Apache-2.0
#include "played_sound.h"

#include <algorithm>

namespace trellant::check {

std::vector<const HeardChannel*> playedChannels(const CheckedHandOff& checked,
                                                const CheckedClip& clip) {
    std::vector<const HeardChannel*> played;
    const HeardSource* const heard = checked.sourceOf(clip).heard;
    if (heard == nullptr) {
        return played;
    }
    const auto channel = clip.event->sourceChannel;
    for (std::size_t i = 0; i < heard->channels.size(); ++i) {
        if (!channel || static_cast<std::uint64_t>(*channel) == i) {
            played.push_back(&heard->channels[i]);
        }
    }
    return played;
}

std::span<const SampleRange> rangesIn(const std::vector<SampleRange>& ranges, std::int64_t first,
                                      std::int64_t end) {
    const auto begin =
        std::partition_point(ranges.begin(), ranges.end(),
                             [first](const SampleRange& range) { return range.end() <= first; });
    const auto behind = std::partition_point(
        begin, ranges.end(), [end](const SampleRange& range) { return range.first < end; });
    return {begin, behind};
}

}  // namespace trellant::check
