// SPDX-License-Identifier: Apache-2.0
#include "played_sound.h"
#include "rule_words.h"
#include "rules/rules.h"

#include <algorithm>

namespace trellant::check {

namespace {

bool isSilent(const HeardChannel& channel, const CheckedClip& clip) {
    const std::int64_t first = clip.event->sourceStartSample;
    const auto silences = rangesIn(channel.silences, first, clip.sourceEnd);
    return silences.size() == 1 && silences.front().first <= first &&
           clip.sourceEnd <= silences.front().end();
}

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    for (const CheckedClip& clip : checked.clips()) {
        const auto channels = playedChannels(checked, clip);
        const bool isAllSilent =
            !channels.empty() &&
            std::all_of(channels.begin(), channels.end(),
                        [&clip](const HeardChannel* channel) { return isSilent(*channel, clip); });
        if (isAllSilent) {
            findings.report({.clip = &clip}, [&] {
                return FindingText{.sentence = sentence(clipText(checked, clip)) +
                                               " is digital silence throughout: see whether its "
                                               "audio was recorded and exported.",
                                   .found = textValue("silence"),
                                   .wanted = textValue("sound")};
            });
        }
    }
}

}  // namespace

constinit const Rule silent{
    .id = "silent",
    .severity = Severity::warning,
    .needs = RuleNeeds::sound,
    .title = "a clip is digital silence throughout",
    .what = "Some sample of what each clip plays is not zero.",
    .why =
        "Silence where a clip stands is a channel that was not recorded, or audio that was lost "
        "on the way.",
    .source = "A rule of this program: nobody sees it on a timeline.",
    .repair = "Listen to the clip in the exporting session; relink or remove it.",
    .look = look};

}  // namespace trellant::check
