// SPDX-License-Identifier: Apache-2.0
// Lists of ranges that stay bounded however a sound goes.
#pragma once

#include <trellant/audio/sound_measures.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace trellant::audio {

/// Counts the range, and lists it while there is room; nothing for an empty one.
inline void addTo(ListedRanges& listed, const FrameRange& range) {
    if (range.frames == 0) {
        return;
    }
    ++listed.total;
    if (listed.ranges.size() < mostListedRanges) {
        listed.ranges.push_back(range);
    }
}

/// Lists every range that is long enough, and takes longer ones only once there is no more room.
/// What is listed is gone through some sixty times at most, since each time doubles the length.
inline void addLongest(std::vector<FrameRange>& ranges, std::uint64_t& shortest,
                       const FrameRange& range) {
    if (range.frames < shortest) {
        return;
    }
    ranges.push_back(range);
    while (ranges.size() > mostListedRanges) {
        shortest *= 2;
        ranges.erase(std::remove_if(
                         ranges.begin(), ranges.end(),
                         [shortest](const FrameRange& listed) { return listed.frames < shortest; }),
                     ranges.end());
    }
}

}  // namespace trellant::audio
