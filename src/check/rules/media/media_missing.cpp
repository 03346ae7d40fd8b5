// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

namespace trellant::check {

namespace {

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    for (const CheckedSource& source : checked.sources()) {
        if (source.state == SourceState::missing && source.clips != 0) {
            findings.report(placeOf(checked, source), [&] {
                return FindingText{
                    .sentence = sentence(sourceText(source)) + " was not found, and " +
                                counted(source.clips, "clip plays", "clips play") +
                                " it: send the file along, or name its folder with --media.",
                    .found = textValue("missing"),
                    .wanted = textValue("found")};
            });
        }
    }
}

}  // namespace

constinit const Rule mediaMissing{
    .id = "media-missing",
    .severity = Severity::error,
    .title = "an audio file of a clip was not found",
    .what = "Every audio file that a clip plays is inside the OMF file or is found beside it.",
    .why =
        "A clip without its audio is silence in the session, and nobody sees which silence was "
        "meant.",
    .source = "Three of fifteen published delivery pages and guides name it.",
    .repair = "Export again with the audio embedded, or send the folder of audio files along.",
    .look = look};

}  // namespace trellant::check
