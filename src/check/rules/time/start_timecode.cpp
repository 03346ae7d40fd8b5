// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <array>

namespace trellant::check {

namespace {

constexpr std::array parameters{Parameter{.key = "timecode",
                                          .kind = ParameterKind::timecode,
                                          .standard = "\"01:00:00:00\"",
                                          .meaning = "where the composition is to start"}};

void look(const CheckedHandOff& checked, const RuleSettings& settings, FindingList& findings) {
    const std::string& wanted = settings.text("timecode");
    const auto at = checked.secondsOf(wanted);
    if (at && *at == AAFRational::zero()) {
        return;
    }
    findings.report({.start = AAFRational::zero()}, [&] {
        const std::string found = checked.timeline().clock.timelineZero.description();
        return FindingText{.sentence = "The composition starts at " + found + "; " + wanted +
                                       " is wanted: set the start of the session, or tell the "
                                       "post house.",
                           .found = textValue(found),
                           .wanted = textValue(wanted)};
    });
}

}  // namespace

constinit const Rule startTimecode{
    .id = "start-timecode",
    .severity = Severity::warning,
    .title = "the composition starts at another timecode",
    .what = "The composition starts at the timecode that the profile names.",
    .why = "Notes and reels of one program are counted from one start.",
    .source =
        "Three of fifteen published delivery pages and guides ask for 01:00:00:00; with a "
        "leader one of them starts at 00:59:50:00.",
    .repair = "Set the start of the timeline in the exporting session.",
    .parameters = parameters,
    .look = look};

}  // namespace trellant::check
