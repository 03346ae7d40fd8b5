// SPDX-License-Identifier: Apache-2.0
#include "loss_findings.h"

#include "effect_losses.h"
#include "rule_words.h"

#include <trellant/base/printable_text.h>

namespace trellant::check {

void reportLosses(const CheckedHandOff& checked, AAFUnsupportedFeature::Severity severity,
                  std::string_view advice, FindingList& findings) {
    const auto& features = checked.timeline().unsupportedFeatures;
    const auto& losses = checked.handOff().losses;
    for (std::size_t i = 0; i < features.size() && i < losses.size(); ++i) {
        const PlacedLoss& loss = losses[i];
        if (features[i].severity != severity || isOfEffect(loss)) {
            continue;
        }
        findings.report({.loss = &loss}, [&] {
            const std::string said = loss.plain.empty()
                                         ? sentence(printableText(features[i].description)) + "."
                                         : loss.plain;
            const bool isDropped = severity == AAFUnsupportedFeature::Severity::informational;
            return FindingText{.sentence = said + " " + std::string(advice),
                               .found = textValue(isDropped ? "dropped" : "soundsDifferent"),
                               .wanted = textValue("kept")};
        });
    }
}

}  // namespace trellant::check
