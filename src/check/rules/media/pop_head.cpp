// SPDX-License-Identifier: Apache-2.0
#include "pops.h"
#include "rule_words.h"
#include "rules/rules.h"

#include <array>

namespace trellant::check {

namespace {

constexpr std::array parameters{
    Parameter{.key = "timecode",
              .kind = ParameterKind::timecode,
              .standard = "\"00:59:58:00\"",
              .meaning = "where the pop is to be: two seconds before the program starts"}};

void look(const CheckedHandOff& checked, const RuleSettings& settings, FindingList& findings) {
    const std::string& wanted = settings.text("timecode");
    const auto time = checked.secondsOf(wanted);
    if (time && hasPopAt(checked, *time)) {
        return;
    }
    findings.report({.start = time && !(*time < AAFRational::zero()) ? time : std::nullopt}, [&] {
        return FindingText{
            .sentence = "No sync pop was heard at " + wanted +
                        ": put a tone of 1 kHz and one or two frames there, on every track "
                        "group, and export again.",
            .found = textValue("none"),
            .wanted = textValue(wanted)};
    });
}

}  // namespace

constinit const Rule popHead{
    .id = "pop-head",
    .severity = Severity::warning,
    .needs = RuleNeeds::sound,
    .title = "no sync pop before the program starts",
    .what =
        "A tone of 1 kHz and one or two frames begins within a frame of the place that the "
        "profile names.",
    .why = "The pop proves in a second that sound and picture are in sync.",
    .source =
        "Four of fifteen published delivery pages and guides ask for it, two seconds before "
        "the program.",
    .repair = "Put the pop into the session, the leader of the picture beside it.",
    .parameters = parameters,
    .look = look};

}  // namespace trellant::check
