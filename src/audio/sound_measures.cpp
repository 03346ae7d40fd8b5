// SPDX-License-Identifier: Apache-2.0
#include <trellant/audio/sound_measures.h>

#include <algorithm>
#include <limits>

namespace trellant::audio {

namespace {

/// The end of a range of a caller, who may mean "to the end" by a huge length.
std::uint64_t boundedEnd(const FrameRange& range) noexcept {
    const std::uint64_t room = std::numeric_limits<std::uint64_t>::max() - range.first;
    return range.first + std::min(range.frames, room);
}

/// The first range that ends behind `frame`.
std::vector<FrameRange>::const_iterator firstBehind(const std::vector<FrameRange>& ranges,
                                                    std::uint64_t frame) {
    return std::upper_bound(
        ranges.begin(), ranges.end(), frame,
        [](std::uint64_t wanted, const FrameRange& range) { return wanted < range.end(); });
}

}  // namespace

Answer isSilent(const SoundMeasures& sound, std::size_t channel, FrameRange range) {
    const ChannelMeasures& measures = sound.channels.at(channel);
    const std::uint64_t end = std::min(boundedEnd(range), sound.frames);
    if (range.first >= end) {
        return Answer::yes;
    }
    const auto run = firstBehind(measures.silences, range.first);
    if (run != measures.silences.end() && run->first <= range.first && end <= run->end()) {
        return Answer::yes;
    }
    return end - range.first < measures.shortestSilence ? Answer::unknown : Answer::no;
}

RangesWithin rangesWithin(const ListedRanges& listed, FrameRange range, std::uint64_t shortest) {
    RangesWithin result;
    const std::uint64_t end = boundedEnd(range);
    for (auto found = firstBehind(listed.ranges, range.first);
         found != listed.ranges.end() && found->first < end; ++found) {
        const std::uint64_t first = std::max(found->first, range.first);
        const std::uint64_t frames = std::min(found->end(), end) - first;
        if (frames >= shortest) {
            result.ranges.push_back({first, frames});
        }
    }
    result.mayBeMore =
        !listed.isWhole() && (listed.ranges.empty() || listed.ranges.back().end() < end);
    return result;
}

}  // namespace trellant::audio
