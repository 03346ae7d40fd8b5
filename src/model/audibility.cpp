// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/precondition.h>
#include <trellant/model/audibility.h>

#include <algorithm>

namespace trellant {

namespace {

[[nodiscard]] bool isSoloed(const AAFTrackState& track) noexcept {
    return track.solo;
}

[[nodiscard]] bool isAudible(const AAFTrackState& track, const AAFClipEvent& event,
                             bool anySolo) noexcept {
    return !track.muted && !event.clipMuted && (!anySolo || track.solo);
}

}  // namespace

AAFAudibility::AAFAudibility(const AAFTimeline& timeline)
    : anySolo_(std::any_of(timeline.tracks.begin(), timeline.tracks.end(), isSoloed)) {
    tracks_.reserve(timeline.tracks.size());
    for (const AAFTrackState& track : timeline.tracks) {
        const bool isNew = tracks_.emplace(track.id, &track).second;
        precondition(isNew, "two tracks of a timeline have the same id");
    }
}

const AAFTrackState* AAFAudibility::track(const AAFClipEvent& event) const {
    const auto found = tracks_.find(event.trackID);
    return found == tracks_.end() ? nullptr : found->second;
}

bool AAFAudibility::isEventAudible(const AAFClipEvent& event,
                                   const AAFTrackState* ofEvent) const noexcept {
    return ofEvent != nullptr && isAudible(*ofEvent, event, anySolo_);
}

bool AAFTimeline::isEventAudible(const AAFClipEvent& event) const noexcept {
    const auto track = std::find_if(
        tracks.begin(), tracks.end(),
        [&event](const AAFTrackState& candidate) { return candidate.id == event.trackID; });
    return track != tracks.end() &&
           isAudible(*track, event, std::any_of(tracks.begin(), tracks.end(), isSoloed));
}

std::optional<AAFRational> AAFTimeline::firstAudibleEventStart() const {
    const AAFAudibility audibility(*this);
    std::optional<AAFRational> first;
    for (const AAFClipEvent& event : events) {
        if (audibility.isEventAudible(event) && (!first || event.timelineStart < *first)) {
            first = event.timelineStart;
        }
    }
    return first;
}

std::optional<AAFTimecodeAddress> AAFTimeline::bounceStart() const {
    const std::optional<AAFRational> first = firstAudibleEventStart();
    return first ? clock.bounceStart(*first, explicitProgramStart) : explicitProgramStart;
}

}  // namespace trellant
