// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace trellant::check {

namespace {

enum class Side { left, right };

/// A track's name without what names its side.
struct SidedName {
    std::string_view stem{};
    Side side = Side::left;
};

/// "Music_L", "Music.R", "Music-l", "Music R"; absent for all else.
std::optional<SidedName> sidedName(const CheckedTrack& track) {
    constexpr std::size_t suffix = 2;
    const auto& name = track.state->name;
    if (!name || name->size() <= suffix) {
        return std::nullopt;
    }
    const std::string_view text(*name);
    const char mark = text[text.size() - suffix];
    const char letter = text.back();
    if (mark != '_' && mark != '.' && mark != '-' && mark != ' ') {
        return std::nullopt;
    }
    const std::string_view stem = text.substr(0, text.size() - suffix);
    if (letter == 'L' || letter == 'l') {
        return SidedName{stem, Side::left};
    }
    return letter == 'R' || letter == 'r' ? std::optional(SidedName{stem, Side::right})
                                          : std::nullopt;
}

/// The position of the first clip that has no counterpart at the same place; absent where all have.
std::optional<std::size_t> firstDifference(std::span<const CheckedClip> left,
                                           std::span<const CheckedClip> right) {
    for (std::size_t i = 0; i < left.size() || i < right.size(); ++i) {
        if (i >= left.size() || i >= right.size() ||
            !(left[i].event->timelineStart == right[i].event->timelineStart) ||
            !(left[i].event->duration == right[i].event->duration)) {
            return i;
        }
    }
    return std::nullopt;
}

void comparePair(const CheckedHandOff& checked, const CheckedTrack& left, const CheckedTrack& right,
                 FindingList& findings) {
    const auto ofLeft = checked.clipsOf(left);
    const auto ofRight = checked.clipsOf(right);
    const auto difference = firstDifference(ofLeft, ofRight);
    if (!difference) {
        return;
    }
    const CheckedClip& clip =
        *difference < ofLeft.size() ? ofLeft[*difference] : ofRight[*difference];
    findings.report({.clip = &clip}, [&] {
        return FindingText{.sentence = sentence(trackText(left)) + " and " + trackText(right) +
                                       " are edited differently from the " +
                                       clipText(checked, clip) +
                                       " on: cut both sides of a pair alike, or rename one track.",
                           .found = countValue(ofRight.size()),
                           .wanted = countValue(ofLeft.size())};
    });
}

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    const auto& tracks = checked.tracks();
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        const auto name = sidedName(tracks[i]);
        const auto next = i + 1 < tracks.size() ? sidedName(tracks[i + 1]) : std::nullopt;
        if (!name) {
            continue;
        }
        if (name->side == Side::left && next && next->side == Side::right &&
            next->stem == name->stem) {
            comparePair(checked, tracks[i], tracks[i + 1], findings);
            ++i;
            continue;
        }
        findings.report({.track = &tracks[i]}, [&] {
            const std::string wanted =
                std::string(name->stem) + (name->side == Side::left ? " right" : " left");
            return FindingText{
                .sentence = sentence(trackText(tracks[i])) + " has no " +
                            (name->side == Side::left ? "right" : "left") +
                            " side beside it: put both tracks of a pair next to one another, the "
                            "left one first, or rename it.",
                .found = textValue("none"),
                .wanted = textValue(wanted)};
        });
    }
}

}  // namespace

constinit const Rule pairs{
    .id = "pairs",
    .severity = Severity::warning,
    .title = "a left track without its right one, or cut differently",
    .what = "A track whose name ends in L has its R as the next one, and both are cut alike.",
    .why =
        "Stereo that was split is joined again by such names; one side alone, or shifted, is "
        "heard at once.",
    .source = "One of fifteen published delivery pages and guides asks for pairs side by side.",
    .repair = "Order the tracks and cut both sides in one go before the export.",
    .look = look};

}  // namespace trellant::check
