// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

namespace trellant::check {

namespace {

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    for (const CheckedSource& source : checked.sources()) {
        const bool isMisfit = source.state == SourceState::misfit;
        if ((!isMisfit && source.state != SourceState::severalCandidates) || source.clips == 0) {
            continue;
        }
        findings.report(placeOf(checked, source), [&] {
            return FindingText{
                .sentence =
                    sentence(sourceText(source)) +
                    (isMisfit ? " does not fit: files bear its name, and none has the rate, "
                                "channels and length that the clips need. Send the right one."
                              : " is not certain: several files bear its name and fit. Leave one "
                                "of them in the folders."),
                .found = textValue(stateWord(source.state)),
                .wanted = textValue("found")};
        });
    }
}

}  // namespace

constinit const Rule mediaAmbiguous{
    .id = "media-ambiguous",
    .severity = Severity::error,
    .title = "several audio files fit a clip, or none of its name does",
    .what =
        "Of the files that bear the name of an audio file exactly one fits what its clips play.",
    .why =
        "A workstation takes the first file of a name that it meets, and that may be another "
        "take.",
    .source = "One of fifteen published delivery pages and guides names it.",
    .repair = "Give files of one name names of their own before the export, or embed the audio.",
    .look = look};

}  // namespace trellant::check
