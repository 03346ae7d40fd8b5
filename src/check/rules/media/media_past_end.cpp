// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <trellant/handoff/timeline_text.h>

namespace trellant::check {

namespace {

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    for (const CheckedClip& clip : checked.clips()) {
        const CheckedSource& source = checked.sourceOf(clip);
        if (!source.frames || clip.sourceEnd <= *source.frames) {
            continue;
        }
        findings.report({.clip = &clip}, [&] {
            const AAFRational beyond = (AAFRational(clip.sourceEnd) - AAFRational(*source.frames)) /
                                       source.essence->sampleRate;
            return FindingText{
                .sentence = sentence(clipText(checked, clip)) + " plays " + plainRate(beyond) +
                            " s beyond the end of its audio, which is silence there: export it "
                            "again with whole media, or shorten the clip.",
                .found = numberValue(AAFRational(clip.sourceEnd)),
                .wanted = numberValue(AAFRational(*source.frames)),
                .unit = "samples"};
        });
    }
}

}  // namespace

constinit const Rule mediaPastEnd{
    .id = "media-past-end",
    .severity = Severity::error,
    .title = "a clip plays beyond the end of its audio",
    .what = "The audio of each clip reaches to the clip's end.",
    .why = "What is beyond the end is silence, or the clip is refused by the workstation.",
    .source = "Exports of workstations are known that do it.",
    .repair = "Shorten the clip to its audio, or render it to a new file, and export again.",
    .look = look};

}  // namespace trellant::check
