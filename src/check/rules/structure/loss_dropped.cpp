// SPDX-License-Identifier: Apache-2.0
#include "loss_findings.h"
#include "rules/rules.h"

namespace trellant::check {

namespace {

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    reportLosses(checked, AAFUnsupportedFeature::Severity::informational,
                 "Replace it by plain clips in the exporting session.", findings);
}

}  // namespace

constinit const Rule lossDropped{
    .id = "loss-dropped",
    .severity = Severity::error,
    .title = "material was left out in reading",
    .what = "All that the file holds could be read.",
    .why = "What is left out is missing from every session made of the file.",
    .source = "One of fifteen published delivery pages and guides names it.",
    .repair = "Render or flatten the clip that is named, and export again.",
    .look = look};

}  // namespace trellant::check
