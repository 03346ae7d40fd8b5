// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

namespace trellant::check {

namespace {

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    const int found = checked.file().objectModel;
    if (found == 2) {
        return;
    }
    findings.report({}, [found] {
        return FindingText{.sentence = "This is an OMF " + std::to_string(found) +
                                       ".x file; OMF 2 is wanted: export the session as OMF 2.",
                           .found = numberValue(AAFRational(found)),
                           .wanted = numberValue(AAFRational(2))};
    });
}

}  // namespace

constinit const Rule omfVersion{
    .id = "omf-version",
    .severity = Severity::error,
    .needs = RuleNeeds::file,
    .title = "OMF 1.x where OMF 2 was wanted",
    .what = "The file is OMF 2.",
    .why = "Few programs of today read OMF 1, and what they read of it differs.",
    .source = "Three of fifteen published delivery pages and guides ask for OMF 2.",
    .repair = "Choose OMF 2 in the export dialogue.",
    .look = look};

}  // namespace trellant::check
