// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

namespace trellant::check {

namespace {

FindingText mutedText(std::string what) {
    return {.sentence = sentence(std::move(what)) +
                        " is muted, which other programs may not keep: remove it, or say that it "
                        "is an alternative.",
            .found = textValue("muted"),
            .wanted = textValue("heard")};
}

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    for (const CheckedTrack& track : checked.tracks()) {
        if (track.state->muted) {
            findings.report({.track = &track}, [&] { return mutedText(trackText(track)); });
        }
    }
    for (const CheckedClip& clip : checked.clips()) {
        if (clip.event->clipMuted) {
            findings.report({.clip = &clip}, [&] { return mutedText(clipText(checked, clip)); });
        }
    }
}

}  // namespace

constinit const Rule muted{
    .id = "muted",
    .severity = Severity::info,
    .title = "muted tracks or clips",
    .what = "No track and no clip is muted.",
    .why = "A mute that is not carried over is sound that nobody wanted.",
    .source = "Two of fifteen published delivery pages and guides ask for muted material to go.",
    .repair = "Remove muted clips before the export, or move them to a track that says so.",
    .look = look};

}  // namespace trellant::check
