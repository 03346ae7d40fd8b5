// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <algorithm>
#include <array>

namespace trellant::check {

namespace {

constexpr std::array parameters{Parameter{.key = "depths",
                                          .kind = ParameterKind::numbers,
                                          .standard = "[16, 24]",
                                          .meaning = "bits of a sample that are right"}};

void look(const CheckedHandOff& checked, const RuleSettings& settings, FindingList& findings) {
    const auto& depths = settings.numbers("depths");
    for (const CheckedSource& source : checked.sources()) {
        if (source.clips == 0 || !source.essence->bitDepth) {
            continue;
        }
        const AAFRational depth(*source.essence->bitDepth);
        if (std::find(depths.begin(), depths.end(), depth) != depths.end()) {
            continue;
        }
        findings.report(placeOf(checked, source), [&] {
            return FindingText{
                .sentence = sentence(sourceText(source)) + " has " +
                            std::to_string(*source.essence->bitDepth) + " bits; " + anyOf(depths) +
                            " are wanted: choose the bit depth in the export dialogue.",
                .found = numberValue(depth),
                .wanted =
                    depths.size() == 1 ? numberValue(depths.front()) : textValue(anyOf(depths)),
                .unit = "bits"};
        });
    }
}

}  // namespace

constinit const Rule depthExpected{
    .id = "depth-expected",
    .severity = Severity::error,
    .title = "another bit depth than wanted",
    .what = "Every audio file that is played has a bit depth that the profile names.",
    .why = "With fewer bits the noise is there to stay; more are not read by every program.",
    .source = "Five of fifteen published delivery pages and guides ask for 16 or 24 bits.",
    .repair = "Choose the bit depth in the export dialogue.",
    .parameters = parameters,
    .look = look};

}  // namespace trellant::check
