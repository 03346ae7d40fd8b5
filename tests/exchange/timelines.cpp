// SPDX-License-Identifier: Apache-2.0
#include "timelines.h"

#include <utility>

namespace trellant::exchange {

AAFTimeline emptyTimeline() {
    AAFTimeline timeline;
    timeline.clock.timelineZero = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps25());
    return timeline;
}

AAFTrackState& addTrack(AAFTimeline& timeline, const std::string& name) {
    AAFTrackState track;
    track.id = name;
    track.index = static_cast<std::int64_t>(timeline.tracks.size());
    track.name = name;
    return timeline.tracks.emplace_back(std::move(track));
}

AAFSourceEssence& addSource(AAFTimeline& timeline, const std::string& name, const AAFRational& rate,
                            std::int64_t channels) {
    AAFSourceEssence essence;
    essence.id = name;
    essence.sourceName = name;
    essence.sampleRate = rate;
    essence.channelCount = channels;
    essence.bitDepth = 24;
    return timeline.essences.emplace_back(std::move(essence));
}

AAFClipEvent& addClip(AAFTimeline& timeline, const std::string& track, const std::string& essence,
                      const AAFRational& start, const AAFRational& duration) {
    AAFClipEvent event;
    event.id = "event-" + std::to_string(timeline.events.size());
    event.trackID = track;
    event.essenceID = essence;
    event.clipName = "clip " + std::to_string(timeline.events.size() + 1);
    event.timelineStart = start;
    event.duration = duration;
    return timeline.events.emplace_back(std::move(event));
}

AAFFade fadeOf(AAFFade::Direction direction, const AAFRational& duration,
               AAFAutomationInterpolation curve) {
    AAFFade fade;
    fade.direction = direction;
    fade.duration = duration;
    fade.curve = std::move(curve);
    return fade;
}

PlanRequest withFiles(const AAFTimeline& timeline, std::int64_t frames) {
    PlanRequest request;
    for (const AAFSourceEssence& essence : timeline.essences) {
        request.mediaFacts.push_back(
            MediaFacts{essence.channelCount, essence.bitDepth, false, frames});
    }
    return request;
}

}  // namespace trellant::exchange
