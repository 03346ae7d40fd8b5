// SPDX-License-Identifier: Apache-2.0
#include <trellant/exporter/planned_reels.h>
#include <trellant/handoff/source_timecode.h>

#include <algorithm>
#include <cstdint>

namespace trellant {

namespace {

exchange::PlannedReel plannedReel(const AAFWorkerExtensions::Reel& reel) {
    exchange::PlannedReel planned{
        .id = reel.mobID, .name = reel.name.value_or(reel.mobID), .start = reel.start};
    if (reel.timecode && reel.timecode->framesPerSecond > 0) {
        planned.timecode =
            exchange::ReelTimecode{std::max<std::int64_t>(reel.timecode->start, 0),
                                   reel.timecode->framesPerSecond, reel.timecode->dropFrame};
        if (const auto counted = sourceTimecode(reel)) {
            planned.timecode->rate = counted->rate.exactRate;
        }
    }
    return planned;
}

}  // namespace

std::map<std::string, exchange::PlannedReel> plannedReels(const HandOff& handOff) {
    std::map<std::string, exchange::PlannedReel> reels;
    for (const AAFWorkerExtensions::Reel& reel : handOff.reels) {
        reels.emplace(reel.essenceID, plannedReel(reel));
    }
    return reels;
}

}  // namespace trellant
