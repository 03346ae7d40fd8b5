// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <algorithm>
#include <vector>

namespace trellant::check {

namespace {

std::int64_t channelOf(const CheckedClip& clip) {
    return clip.event->sourceChannel.value_or(-1);
}

/// What makes two clips sound alike, by ascending source, channel, sample and place; then by track.
bool isBefore(const CheckedClip* left, const CheckedClip* right) {
    if (left->source != right->source) {
        return left->source < right->source;
    }
    if (channelOf(*left) != channelOf(*right)) {
        return channelOf(*left) < channelOf(*right);
    }
    if (left->event->sourceStartSample != right->event->sourceStartSample) {
        return left->event->sourceStartSample < right->event->sourceStartSample;
    }
    if (!(left->event->timelineStart == right->event->timelineStart)) {
        return left->event->timelineStart < right->event->timelineStart;
    }
    if (!(left->event->duration == right->event->duration)) {
        return left->event->duration < right->event->duration;
    }
    return left->track < right->track;
}

bool isAlike(const CheckedClip& left, const CheckedClip& right) {
    return left.source == right.source && channelOf(left) == channelOf(right) &&
           left.event->sourceStartSample == right.event->sourceStartSample &&
           left.event->timelineStart == right.event->timelineStart &&
           left.event->duration == right.event->duration;
}

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    std::vector<const CheckedClip*> sorted;
    sorted.reserve(checked.clips().size());
    for (const CheckedClip& clip : checked.clips()) {
        sorted.push_back(&clip);
    }
    std::sort(sorted.begin(), sorted.end(), isBefore);
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        const CheckedClip& first = *sorted[i - 1];
        const CheckedClip& second = *sorted[i];
        if (first.track == second.track || !isAlike(first, second)) {
            continue;
        }
        findings.report({.clip = &second}, [&] {
            return FindingText{.sentence = sentence(clipText(checked, second)) +
                                           " plays the same audio at the same time as one on " +
                                           trackText(checked.trackOf(first)) +
                                           ", which makes it louder: remove one of both.",
                               .found = textValue(trackText(checked.trackOf(first))),
                               .wanted = textValue("one clip")};
        });
    }
}

}  // namespace

constinit const Rule duplicate{
    .id = "duplicate",
    .severity = Severity::warning,
    .title = "the same audio at the same time on two tracks",
    .what = "No two tracks play the same part of the same audio at the same time.",
    .why = "Doubled clips are 6 dB louder, and a later shift of one of them sounds hollow.",
    .source = "One of fifteen published delivery pages and guides forbids doubled clips.",
    .repair = "Remove the copies, which often come from a locked or hidden track.",
    .look = look};

}  // namespace trellant::check
