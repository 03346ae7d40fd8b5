// SPDX-License-Identifier: Apache-2.0
#include "loss_findings.h"
#include "rules/rules.h"

namespace trellant::check {

namespace {

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    reportLosses(checked, AAFUnsupportedFeature::Severity::renderAffecting,
                 "Render it to a clip before the export, or do it again in the mix.", findings);
}

}  // namespace

constinit const Rule lossSound{
    .id = "loss-sound",
    .severity = Severity::warning,
    .title = "material is kept and sounds different",
    .what = "All that could be read sounds as it was meant. Effects have a rule of their own.",
    .why = "A fade or pan that is gone changes a balance that somebody liked.",
    .source = "One of fifteen published delivery pages and guides names it.",
    .repair = "Render what is named to a clip before the export.",
    .look = look};

}  // namespace trellant::check
