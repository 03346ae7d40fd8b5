// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <trellant/handoff/timeline_text.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace trellant::check {

namespace {

constexpr std::array parameters{Parameter{.key = "decibels",
                                          .kind = ParameterKind::number,
                                          .standard = "12",
                                          .meaning = "the highest gain that is right, in dB"}};

/// A factor that a limit in decibels rounds to must not be above it.
constexpr double slack = 1e-6;

bool isSilentAllAlong(const AAFAutomationEnvelope& envelope) {
    return !envelope.points.empty() &&
           std::all_of(envelope.points.begin(), envelope.points.end(),
                       [](const AAFAutomationPoint& point) { return point.value == 0; });
}

double loudest(double fixed, const AAFAutomationEnvelope* envelope) {
    double factor = 1;
    if (envelope != nullptr && !envelope->points.empty()) {
        factor = 0;
        for (const AAFAutomationPoint& point : envelope->points) {
            factor = std::max(factor, std::abs(point.value));
        }
    }
    return std::abs(fixed) * factor;
}

/// What carries the gain, in words, and where it is.
struct Carrier {
    double fixed = 1;
    const AAFAutomationEnvelope* envelope = nullptr;
    FindingPlace place{};
};

template <class Name>
void judge(const Carrier& carrier, const AAFRational& limit, const Name& name,
           FindingList& findings) {
    const double factor = loudest(carrier.fixed, carrier.envelope);
    const double most = std::pow(10.0, limit.doubleValue() / 20) * (1 + slack);
    const bool isSilent = carrier.envelope != nullptr && isSilentAllAlong(*carrier.envelope);
    if (!isSilent && !(factor > most)) {
        return;
    }
    findings.report(carrier.place, [&] {
        return FindingText{
            .sentence =
                sentence(name()) +
                (isSilent ? " is automated to silence all along: remove it, or its automation."
                          : " has a gain of " + decibelText(factor) + " dB; at most " +
                                plainRate(limit) + " dB is wanted: render it louder."),
            .found = textValue(decibelText(factor)),
            .wanted = numberValue(limit),
            .unit = "dB"};
    });
}

void look(const CheckedHandOff& checked, const RuleSettings& settings, FindingList& findings) {
    const AAFRational& limit = settings.number("decibels");
    for (const CheckedTrack& track : checked.tracks()) {
        const auto& automation = track.state->gainAutomation;
        judge(
            {.fixed = track.state->fixedGain,
             .envelope = automation ? &*automation : nullptr,
             .place = {.track = &track}},
            limit, [&track] { return trackText(track); }, findings);
    }
    for (const CheckedClip& clip : checked.clips()) {
        const auto& automation = clip.event->clipGainAutomation;
        if (automation || clip.event->fixedClipGain != 1) {
            judge(
                {.fixed = clip.event->fixedClipGain,
                 .envelope = automation ? &*automation : nullptr,
                 .place = {.clip = &clip}},
                limit, [&] { return clipText(checked, clip); }, findings);
        }
    }
}

}  // namespace

constinit const Rule gainRange{
    .id = "gain-range",
    .severity = Severity::warning,
    .title = "a gain above the limit, or silence by automation",
    .what =
        "No track or clip has more gain than the profile allows, and none is automated to "
        "silence all along.",
    .why = "Programs cut gains off at a limit of their own, and a clip comes in too soft.",
    .source =
        "One of fifteen published delivery pages and guides names it; 12 dB is what most "
        "programs keep.",
    .repair = "Render clips that need more gain, and remove those that are not to be heard.",
    .parameters = parameters,
    .look = look};

}  // namespace trellant::check
