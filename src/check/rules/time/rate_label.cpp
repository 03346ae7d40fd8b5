// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <trellant/handoff/timeline_text.h>

namespace trellant::check {

namespace {

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    const auto drift = rateDrift(checked.timeline().clock);
    if (!drift) {
        return;
    }
    findings.report({}, [&] {
        return FindingText{.sentence = rateDisagreement(checked.timeline().clock).value_or("") +
                                       " Ask which of both the picture has.",
                           .found = numberValue(drift->timecodeRate),
                           .wanted = numberValue(drift->editRate),
                           .unit = "fps"};
    });
}

}  // namespace

constinit const Rule rateLabel{
    .id = "rate-label",
    .severity = Severity::warning,
    .title = "frames and their labels run at different rates",
    .what = "The composition counts frames at the rate of its timecode.",
    .why = "29.97 labelled as 25 is 12 minutes off after an hour: no note fits the picture.",
    .source = "One of fifteen published delivery pages and guides describes it.",
    .repair = "Set the timecode of the session to the rate that it plays at.",
    .look = look};

}  // namespace trellant::check
