// SPDX-License-Identifier: Apache-2.0
#include "effect_losses.h"
#include "rule_words.h"
#include "rules/rules.h"

namespace trellant::check {

namespace {

void reportUnrendered(const CheckedHandOff& checked, FindingList& findings) {
    const auto& losses = checked.handOff().losses;
    for (const PlacedLoss& loss : losses) {
        if (isOfEffect(loss)) {
            findings.report({.loss = &loss}, [&] {
                return FindingText{
                    .sentence = loss.plain + " Render the effect to a clip before the export.",
                    .found = textValue("unrendered"),
                    .wanted = textValue("none")};
            });
        }
    }
}

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    reportUnrendered(checked, findings);
    const auto& contents = checked.handOff().contents;
    if (contents && contents->renderedEffects > 0) {
        findings.report({}, [&] {
            const auto count = static_cast<std::size_t>(contents->renderedEffects);
            return FindingText{
                .sentence = counted(count, "effect is", "effects are") +
                            " played by rendered results: send the audio without effects too, if "
                            "the mix is to begin from there.",
                .found = textValue("rendered"),
                .wanted = textValue("none")};
        });
    }
}

}  // namespace

constinit const Rule effects{
    .id = "effects",
    .severity = Severity::warning,
    .title = "effects that are lost, or rendered into the audio",
    .what = "The file holds no effects but gains, pans and crossfades.",
    .why = "An effect that is not rendered is silence or lost; one that is cannot be undone.",
    .source = "Four of fifteen published delivery pages and guides ask for audio without effects.",
    .repair = "Remove effects before the export, and send a reference mix with them.",
    .look = look};

}  // namespace trellant::check
