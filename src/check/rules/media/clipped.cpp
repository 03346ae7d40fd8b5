// SPDX-License-Identifier: Apache-2.0
#include "played_sound.h"
#include "rule_words.h"
#include "rules/rules.h"

#include <trellant/handoff/timeline_text.h>

#include <algorithm>
#include <array>
#include <optional>

namespace trellant::check {

namespace {

constexpr std::array parameters{
    Parameter{.key = "samples",
              .kind = ParameterKind::number,
              .standard = "3",
              .meaning = "successive samples at full scale that count, 3 or more"}};

struct Runs {
    std::size_t count = 0;
    std::optional<std::int64_t> first{};
};

void countRuns(const HeardChannel& channel, const CheckedClip& clip, const AAFRational& shortest,
               Runs& runs) {
    const std::int64_t begin = clip.event->sourceStartSample;
    for (const SampleRange& run : rangesIn(channel.fullScale, begin, clip.sourceEnd)) {
        const std::int64_t first = std::max(run.first, begin);
        const std::int64_t end = std::min(run.end(), clip.sourceEnd);
        if (!(AAFRational(end - first) < shortest)) {
            ++runs.count;
            runs.first = std::min(runs.first.value_or(first), first);
        }
    }
}

void look(const CheckedHandOff& checked, const RuleSettings& settings, FindingList& findings) {
    const AAFRational& shortest = settings.number("samples");
    for (const CheckedClip& clip : checked.clips()) {
        Runs runs;
        for (const HeardChannel* const channel : playedChannels(checked, clip)) {
            countRuns(*channel, clip, shortest, runs);
        }
        if (runs.count == 0) {
            continue;
        }
        findings.report({.clip = &clip}, [&] {
            const AAFRational at =
                clip.event->timelineStart +
                (AAFRational(*runs.first) - AAFRational(clip.event->sourceStartSample)) /
                    checked.sourceOf(clip).essence->sampleRate;
            return FindingText{.sentence = sentence(clipText(checked, clip)) +
                                           " is cut off at "
                                           "full scale in " +
                                           counted(runs.count, "place", "places") + ", first at " +
                                           timecodeText(checked.timeline(), at) +
                                           ": look for a recording with a lower level.",
                               .found = countValue(runs.count),
                               .wanted = countValue(0)};
        });
    }
}

}  // namespace

constinit const Rule clipped{
    .id = "clipped",
    .severity = Severity::warning,
    .needs = RuleNeeds::sound,
    .title = "successive samples at full scale",
    .what = "No clip plays three or more successive samples at full scale.",
    .why = "A wave that was cut off sounds harsh and cannot be mended by a fader.",
    .source = "A rule of this program; three samples are what most meters take for an over.",
    .repair =
        "Take the original recording in place of a bounced one, or lower its level before "
        "it is rendered.",
    .parameters = parameters,
    .look = look};

}  // namespace trellant::check
