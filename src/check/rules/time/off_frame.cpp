// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <trellant/handoff/timeline_text.h>

namespace trellant::check {

namespace {

bool isOnFrame(const AAFRational& time, const AAFRational& rate) {
    return (time * rate).denominator() == 1;
}

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    std::size_t edits = 0;
    const CheckedClip* first = nullptr;
    for (const CheckedClip& clip : checked.clips()) {
        const std::size_t off =
            (isOnFrame(clip.event->timelineStart, checked.frameRate()) ? 0U : 1U) +
            (isOnFrame(clip.end, checked.frameRate()) ? 0U : 1U);
        edits += off;
        first = off != 0 && first == nullptr ? &clip : first;
    }
    if (first == nullptr) {
        return;
    }
    findings.report({.clip = first}, [&] {
        return FindingText{
            .sentence = counted(edits, "edit does", "edits do") + " not lie on a frame of " +
                        plainRate(checked.frameRate()) + " fps, first that of the " +
                        clipText(checked, *first) +
                        ": a program that counts frames moves them; choose samples there.",
            .found = countValue(edits),
            .wanted = countValue(0)};
    });
}

}  // namespace

constinit const Rule offFrame{
    .id = "off-frame",
    .severity = Severity::info,
    .title = "edits between two frames",
    .what = "Every clip begins and ends on a frame.",
    .why = "Programs that count frames round such edits, which leaves gaps and overlaps.",
    .source = "One of fifteen published delivery pages and guides describes it.",
    .repair = "None is needed where the session is opened in a program that counts samples.",
    .look = look};

}  // namespace trellant::check
