// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <trellant/handoff/frame_clock.h>
#include <trellant/handoff/timeline_text.h>

#include <algorithm>
#include <array>

namespace trellant::check {

namespace {

constexpr std::array<std::string_view, 3> countings{"any", "drop", "non-drop"};
constexpr std::array parameters{
    Parameter{.key = "rates",
              .kind = ParameterKind::numbers,
              .standard = "[23.976, 24, 25, 29.97, 30]",
              .meaning = "frame rates of the timecode that are right, in frames per second"},
    Parameter{.key = "counting",
              .kind = ParameterKind::word,
              .standard = "\"any\"",
              .meaning = "whether frames are to be counted drop-frame",
              .words = countings}};

/// A profile says 23.976 or 23.98 for 24000/1001.
bool isNearly(const AAFRational& rate, const AAFRational& wanted) {
    const AAFRational apart = rate < wanted ? wanted - rate : rate - wanted;
    return apart < AAFRational(1, 100);
}

void look(const CheckedHandOff& checked, const RuleSettings& settings, FindingList& findings) {
    const auto& rates = settings.numbers("rates");
    const std::string& counting = settings.text("counting");
    const AAFTimecodeRate rate = frameClock(checked.timeline().clock).timecodeRate;
    const bool hasTimecode = checked.timeline().hasNativeTimecode.value_or(false);
    const bool isRate = std::any_of(rates.begin(), rates.end(), [&rate](const AAFRational& one) {
        return isNearly(rate.exactRate, one);
    });
    const bool isCounting = counting == "any" || (counting == "drop") == rate.dropFrame;
    if (hasTimecode && isRate && isCounting) {
        return;
    }
    findings.report({}, [&] {
        const std::string wanted =
            anyOf(rates) + " fps" + (counting == "any" ? "" : " " + counting);
        return FindingText{
            .sentence = hasTimecode ? "The timecode counts " + rateText(rate) + "; " + wanted +
                                          " is wanted: set the frame rate of the session."
                                    : "The file has no timecode, and 25 fps from 00:00:00:00 are "
                                      "assumed; " +
                                          wanted + " is wanted: export with timecode.",
            .found = hasTimecode ? FindingValue{rateText(rate), rate.exactRate} : textValue("none"),
            .wanted = textValue(wanted),
            .unit = "fps"};
    });
}

}  // namespace

constinit const Rule frameRate{
    .id = "frame-rate",
    .severity = Severity::error,
    .title = "another frame rate or counting than wanted",
    .what = "The file has timecode, at a rate and with a way of counting that the profile names.",
    .why = "With the wrong rate every note of the picture is off, more from minute to minute.",
    .source =
        "Three of fifteen published delivery pages and guides ask for the rate of the "
        "picture; the default takes the usual ones.",
    .repair = "Set the frame rate of the exporting session to that of the picture.",
    .parameters = parameters,
    .look = look};

}  // namespace trellant::check
