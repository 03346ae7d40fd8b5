// SPDX-License-Identifier: Apache-2.0
#include "name_pattern.h"
#include "rule_words.h"
#include "rules/rules.h"

#include <trellant/base/keyed_hash.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace trellant::check {

namespace {

constexpr std::array parameters{Parameter{.key = "patterns",
                                          .kind = ParameterKind::patterns,
                                          .standard = "[\"*\"]",
                                          .meaning = "names of tracks that are right"}};

void reportName(const CheckedTrack& track, std::string fault, std::string_view wanted,
                FindingList& findings) {
    findings.report({.track = &track}, [&] {
        return FindingText{.sentence = sentence(trackText(track)) + std::move(fault),
                           .found = textValue(track.state->name.value_or("")),
                           .wanted = textValue(wanted)};
    });
}

bool fitsAny(std::string_view name, const std::vector<std::string>& patterns) {
    return std::any_of(patterns.begin(), patterns.end(),
                       [name](const std::string& pattern) { return fitsPattern(name, pattern); });
}

void look(const CheckedHandOff& checked, const RuleSettings& settings, FindingList& findings) {
    const auto& patterns = settings.texts("patterns");
    KeyedMap<std::string_view, const CheckedTrack*> seen;
    for (const CheckedTrack& track : checked.tracks()) {
        const std::string_view name =
            track.state->name ? std::string_view(*track.state->name) : std::string_view();
        if (name.empty()) {
            reportName(track, " has no name: name it by what is on it.", "a name", findings);
            continue;
        }
        const auto [first, isNew] = seen.emplace(name, &track);
        if (!isNew) {
            reportName(track,
                       " bears the name of track " +
                           std::to_string(first->second->state->index + 1) +
                           " too: give each track a name of its own.",
                       "a name of its own", findings);
        } else if (!fitsAny(name, patterns)) {
            reportName(track, " does not bear one of the names that the profile wants: rename it.",
                       patterns.front(), findings);
        }
    }
}

}  // namespace

constinit const Rule trackNames{
    .id = "track-names",
    .severity = Severity::info,
    .title = "tracks without names, or with equal ones",
    .what = "Every track has a name of its own, one that the profile's patterns allow.",
    .why = "Whoever opens forty tracks begins with their names.",
    .source = "Two of fifteen published delivery pages and guides ask for named tracks.",
    .repair = "Name the tracks by what is on them before the export.",
    .parameters = parameters,
    .look = look};

}  // namespace trellant::check
