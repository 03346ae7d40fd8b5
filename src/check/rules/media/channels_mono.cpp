// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

namespace trellant::check {

namespace {

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    for (const CheckedSource& source : checked.sources()) {
        const std::int64_t channels = source.essence->channelCount;
        if (source.clips == 0 || channels < 2) {
            continue;
        }
        findings.report(placeOf(checked, source), [&] {
            return FindingText{
                .sentence = sentence(sourceText(source)) + " has " + std::to_string(channels) +
                            " channels interleaved, and " +
                            counted(source.clips, "clip plays", "clips play") +
                            " one of them; mono files are wanted: split stereo before the export.",
                .found = numberValue(AAFRational(channels)),
                .wanted = numberValue(AAFRational(1))};
        });
    }
}

}  // namespace

constinit const Rule channelsMono{
    .id = "channels-mono",
    .severity = Severity::warning,
    .title = "a clip plays from an interleaved file",
    .what = "Clips play mono files.",
    .why =
        "Tracks of OMF are mono; programs differ in which channel of an interleaved file they "
        "take.",
    .source = "Four of fifteen published delivery pages and guides ask for mono files.",
    .repair = "Split stereo and multichannel tracks into mono ones before the export.",
    .look = look};

}  // namespace trellant::check
