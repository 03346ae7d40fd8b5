// SPDX-License-Identifier: Apache-2.0
#include "round_trip.h"

#include "require.h"

#include <trellant/model/audibility.h>
#include <trellant/model/record_fields.h>
#include <trellant/model/repair.h>
#include <trellant/model/timeline_json.h>
#include <trellant/model/validation.h>

namespace trellant::fuzzing {

namespace {

std::string problemOfDecoded(std::string_view json, const AAFTimeline& expected) {
    try {
        require(decodeJson<AAFTimeline>(json) == expected, "a checked timeline is read as it was");
    } catch (const AAFRawTimelineValidation::Failure& failure) {
        return failure.description();
    }
    return {};
}

/// As hosts ask; validation promises that none of it can fail.
void askEverything(const AAFTimeline& timeline) {
    const AAFAudibility audibility(timeline);
    for (const AAFClipEvent& event : timeline.events) {
        require(audibility.track(event) != nullptr, "an event of a sound timeline has a track");
        require(audibility.isEventAudible(event) == timeline.isEventAudible(event),
                "both questions for audibility have one answer");
        static_cast<void>(timeline.clock.address(event.timelineStart).description());
        static_cast<void>(timeline.clock.address(event.timelineEnd()).absoluteFrameNumber());
    }
    static_cast<void>(timeline.firstAudibleEventStart());
    if (const auto start = timeline.bounceStart()) {
        static_cast<void>(start->description());
    }
}

}  // namespace

std::string problemOf(const AAFTimeline& timeline) {
    try {
        AAFRawTimelineValidation::validate(timeline);
    } catch (const AAFRawTimelineValidation::Failure& failure) {
        return failure.description();
    }
    return {};
}

std::string requireRoundTrip(const AAFTimeline& timeline) {
    std::string json = sortedJson(timeline);
    const auto again = decodeJson<AAFTimeline>(json, TimelineChecks::none);
    require(again == timeline, "a timeline that was written is read as it was");
    require(sortedJson(again) == json, "a timeline is written the same each time");
    require(problemOfDecoded(json, timeline) == problemOf(timeline),
            "the decoder's checks say what validation says");
    return json;
}

void requireUsable(const AAFTimeline& timeline) {
    const bool wasSound = problemOf(timeline).empty();
    const AAFRepair repair = repairedTimeline(timeline);
    require(problemOf(repair.timeline).empty(), "a repaired timeline passes validation");
    require(wasSound == repair.changes.empty(), "only what is wrong is repaired");
    require(!wasSound || repair.timeline == timeline, "a sound timeline stays as it is");
    askEverything(repair.timeline);
}

}  // namespace trellant::fuzzing
