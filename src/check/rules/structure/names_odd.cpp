// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <trellant/base/text.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace trellant::check {

namespace {

constexpr std::array parameters{
    Parameter{.key = "units",
              .kind = ParameterKind::number,
              .standard = "31",
              .meaning = "the longest name that is right, in units of UTF-16"}};

/// Longer than any limit that a profile would set, and all that is looked at of a name.
constexpr std::size_t longestLooked = 65'536;

struct Fault {
    std::string_view text{};
    FindingValue found{};
};

bool hasControl(std::string_view name) {
    return std::any_of(name.begin(), name.end(), [](char character) {
        return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
    });
}

/// A byte that was no text (U+FFFD), or one of the pairs that UTF-8 read as Latin 1 becomes.
bool isWronglyRead(std::string_view name) {
    return name.find("\xEF\xBF\xBD") != std::string_view::npos ||
           name.find("\xC3\x83\xC2") != std::string_view::npos ||
           name.find("\xC3\xA2\xC2\x80") != std::string_view::npos;
}

std::optional<Fault> faultOf(std::string_view whole, const AAFRational& longest) {
    const std::string_view name = whole.substr(0, longestLooked);
    if (hasControl(name)) {
        return Fault{" holds control characters: name it anew.", textValue("controls")};
    }
    if (isWronglyRead(name)) {
        return Fault{
            " was written in another encoding than it was read in: name it in plain "
            "letters.",
            textValue("encoding")};
    }
    // A unit takes a byte at least.
    if (AAFRational(static_cast<std::int64_t>(name.size())) <= longest) {
        return std::nullopt;
    }
    const std::size_t units = toUTF16(name).size();
    if (AAFRational(static_cast<std::int64_t>(units)) <= longest) {
        return std::nullopt;
    }
    return Fault{" has a name that some programs cut short: use a shorter one.", countValue(units)};
}

FindingText textOf(const Fault& fault, std::string carrier, const AAFRational& longest) {
    return {.sentence = sentence(std::move(carrier)) + std::string(fault.text),
            .found = fault.found,
            .wanted = numberValue(longest),
            .unit = fault.found.number ? "units" : ""};
}

void look(const CheckedHandOff& checked, const RuleSettings& settings, FindingList& findings) {
    const AAFRational& longest = settings.number("units");
    for (const CheckedTrack& track : checked.tracks()) {
        if (const auto fault = faultOf(track.state->name.value_or(""), longest)) {
            findings.report({.track = &track},
                            [&] { return textOf(*fault, trackText(track), longest); });
        }
    }
    for (const CheckedSource& source : checked.sources()) {
        if (const auto fault = faultOf(sourceName(*source.essence), longest)) {
            findings.report(placeOf(checked, source),
                            [&] { return textOf(*fault, sourceText(source), longest); });
        }
    }
    for (const CheckedClip& clip : checked.clips()) {
        const auto& name = clip.event->clipName;
        if (const auto fault = name ? faultOf(*name, longest) : std::nullopt) {
            findings.report({.clip = &clip},
                            [&] { return textOf(*fault, clipText(checked, clip), longest); });
        }
    }
}

}  // namespace

constinit const Rule namesOdd{
    .id = "names-odd",
    .severity = Severity::info,
    .title = "names that other programs do not keep",
    .what =
        "Names of tracks, audio files and clips hold no control characters, are read in the "
        "encoding that they were written in, and are not too long.",
    .why = "Programs cut or change such names, and audio is not found by them any more.",
    .source =
        "One of fifteen published delivery pages and guides describes it; 31 units are what "
        "older file systems keep.",
    .repair = "Rename what is named in plain letters before the export.",
    .parameters = parameters,
    .look = look};

}  // namespace trellant::check
