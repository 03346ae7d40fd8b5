// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <trellant/handoff/timeline_text.h>

#include <algorithm>
#include <array>

namespace trellant::check {

namespace {

constexpr std::array parameters{Parameter{.key = "rates",
                                          .kind = ParameterKind::numbers,
                                          .standard = "[48000]",
                                          .meaning = "sample rates that are right, in Hz"}};

void look(const CheckedHandOff& checked, const RuleSettings& settings, FindingList& findings) {
    const auto& rates = settings.numbers("rates");
    for (const CheckedSource& source : checked.sources()) {
        const AAFRational& rate = source.essence->sampleRate;
        if (source.clips == 0 || std::find(rates.begin(), rates.end(), rate) != rates.end()) {
            continue;
        }
        findings.report(placeOf(checked, source), [&] {
            return FindingText{
                .sentence = sentence(sourceText(source)) + " has " + plainRate(rate) + " Hz; " +
                            anyOf(rates) + " Hz are wanted: convert the session and export again.",
                .found = numberValue(rate),
                .wanted = rates.size() == 1 ? numberValue(rates.front()) : textValue(anyOf(rates)),
                .unit = "Hz"};
        });
    }
}

}  // namespace

constinit const Rule rateExpected{
    .id = "rate-expected",
    .severity = Severity::error,
    .title = "another sample rate than wanted",
    .what = "Every audio file that is played has a sample rate that the profile names.",
    .why =
        "Audio of another rate is converted, or plays at the wrong speed, where nobody asked "
        "for it.",
    .source = "Eight of fifteen published delivery pages and guides ask for 48 kHz.",
    .repair = "Set the session's sample rate, or let the export convert to it.",
    .parameters = parameters,
    .look = look};

}  // namespace trellant::check
