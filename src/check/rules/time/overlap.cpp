// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <trellant/handoff/timeline_text.h>

#include <algorithm>

namespace trellant::check {

namespace {

/// Whether the fades of both cover what they share.
bool isCrossfade(const CheckedClip& earlier, const CheckedClip& later) {
    const auto& out = earlier.event->fadeOut;
    const auto& in = later.event->fadeIn;
    const AAFRational shared = earlier.end - later.event->timelineStart;
    return out && in && shared <= out->duration && shared <= in->duration &&
           earlier.end <= later.end;
}

void report(const CheckedHandOff& checked, const CheckedClip& earlier, const CheckedClip& later,
            FindingList& findings) {
    const AAFRational start = later.event->timelineStart;
    const AAFRational shared = std::min(earlier.end, later.end) - start;
    findings.report({.clip = &later, .start = start, .duration = shared}, [&] {
        return FindingText{
            .sentence = sentence(clipText(checked, later)) + " lies over " +
                        clipText(checked, earlier) + " for " +
                        lengthText(checked.timeline(), shared) +
                        " without a crossfade: put it onto a track of its own, or trim it.",
            .found = numberValue(shared),
            .wanted = numberValue(AAFRational(0)),
            .unit = "s"};
    });
}

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    for (const CheckedTrack& track : checked.tracks()) {
        // The clip that reaches furthest of those before: whoever lies over any lies over that one.
        const CheckedClip* furthest = nullptr;
        for (const CheckedClip& clip : checked.clipsOf(track)) {
            if (furthest != nullptr && clip.event->timelineStart < furthest->end &&
                !isCrossfade(*furthest, clip)) {
                report(checked, *furthest, clip, findings);
            }
            furthest = furthest == nullptr || furthest->end < clip.end ? &clip : furthest;
        }
    }
}

}  // namespace

constinit const Rule overlap{
    .id = "overlap",
    .severity = Severity::warning,
    .title = "clips of a track lie over one another",
    .what = "Clips of one track do not share a moment but in a crossfade.",
    .why = "Most programs play one clip of a track at a time: one of both is not heard.",
    .source = "One of fifteen published delivery pages and guides names it.",
    .repair = "Put one of the clips onto another track before the export.",
    .look = look};

}  // namespace trellant::check
