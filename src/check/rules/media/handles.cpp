// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <trellant/handoff/timeline_text.h>

#include <algorithm>
#include <array>
#include <vector>

namespace trellant::check {

namespace {

constexpr std::array parameters{
    Parameter{.key = "seconds",
              .kind = ParameterKind::number,
              .standard = "5",
              .meaning = "media before and behind each clip, in seconds"}};

/// Media beside a clip, in seconds.
struct Handles {
    const CheckedClip* clip = nullptr;
    AAFRational before{};
    /// Absent where the audio's length is not known.
    std::optional<AAFRational> after{};

    [[nodiscard]] AAFRational shortest() const { return after ? std::min(before, *after) : before; }
};

Handles handlesOf(const CheckedHandOff& checked, const CheckedClip& clip) {
    const CheckedSource& source = checked.sourceOf(clip);
    const AAFRational& rate = source.essence->sampleRate;
    Handles handles{.clip = &clip, .before = AAFRational(clip.event->sourceStartSample) / rate};
    if (source.frames) {
        // A clip that ends beyond its audio is another rule's.
        handles.after =
            AAFRational(std::max<std::int64_t>(*source.frames - clip.sourceEnd, 0)) / rate;
    }
    return handles;
}

FindingText textOf(const CheckedHandOff& checked, const Handles& handles,
                   const AAFRational& wanted) {
    return {.sentence = sentence(clipText(checked, *handles.clip)) + " has " +
                        plainRate(handles.before) + " s of audio before it and " +
                        (handles.after ? plainRate(*handles.after) + " s" : "an unknown length") +
                        " behind it; " + plainRate(wanted) +
                        " s are wanted on each side: export again with longer handles.",
            .found = numberValue(handles.shortest()),
            .wanted = numberValue(wanted),
            .unit = "s"};
}

void look(const CheckedHandOff& checked, const RuleSettings& settings, FindingList& findings) {
    const AAFRational& wanted = settings.number("seconds");
    std::vector<Handles> shortOnes;
    for (const CheckedClip& clip : checked.clips()) {
        const Handles handles = handlesOf(checked, clip);
        if (handles.shortest() < wanted) {
            shortOnes.push_back(handles);
        }
    }
    std::stable_sort(shortOnes.begin(), shortOnes.end(),
                     [](const Handles& left, const Handles& right) {
                         return left.shortest() < right.shortest();
                     });
    for (const Handles& handles : shortOnes) {
        findings.report({.clip = handles.clip}, [&] { return textOf(checked, handles, wanted); });
    }
}

}  // namespace

constinit const Rule handles{
    .id = "handles",
    .severity = Severity::warning,
    .title = "less audio before or behind a clip than wanted",
    .what =
        "There is audio before and behind each clip, as long as the profile wants it; the "
        "clips with the shortest come first.",
    .why = "Without handles no fade can be moved and no cut be opened in the mix.",
    .source =
        "Of fifteen published delivery pages and guides one asks for 4 s, three for 5, one "
        "for 6, two for 8 and two for 10.",
    .repair =
        "Set the length of handles in the export dialogue; clips at the very start or end of "
        "a recording have no more to give, which a profile may accept.",
    .parameters = parameters,
    .look = look};

}  // namespace trellant::check
