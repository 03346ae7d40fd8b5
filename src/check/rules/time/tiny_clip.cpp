// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <trellant/handoff/timeline_text.h>

#include <array>

namespace trellant::check {

namespace {

constexpr std::array parameters{Parameter{.key = "frames",
                                          .kind = ParameterKind::number,
                                          .standard = "1",
                                          .meaning = "the shortest clip that is right, in frames"}};

void look(const CheckedHandOff& checked, const RuleSettings& settings, FindingList& findings) {
    const AAFRational& wanted = settings.number("frames");
    const AAFRational shortest = wanted / checked.frameRate();
    for (const CheckedClip& clip : checked.clips()) {
        if (clip.event->duration < shortest) {
            findings.report({.clip = &clip}, [&] {
                const AAFRational found = clip.event->duration * checked.frameRate();
                return FindingText{.sentence = sentence(clipText(checked, clip)) + " is " +
                                               plainRate(found) +
                                               " frames long: it may be left over from an edit on "
                                               "samples; see whether it is meant.",
                                   .found = numberValue(found),
                                   .wanted = numberValue(wanted),
                                   .unit = "frames"};
            });
        }
    }
}

}  // namespace

constinit const Rule tinyClip{
    .id = "tiny-clip",
    .severity = Severity::info,
    .title = "a clip shorter than a frame",
    .what = "Every clip is at least a frame long.",
    .why = "Exports that count samples leave fragments beside cuts, which click or get lost.",
    .source = "One of fifteen published delivery pages and guides describes it.",
    .repair = "Heal the cut in the exporting session, or leave the fragment out.",
    .parameters = parameters,
    .look = look};

}  // namespace trellant::check
