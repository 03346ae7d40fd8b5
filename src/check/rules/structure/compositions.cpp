// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

namespace trellant::check {

namespace {

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    const auto& compositions = checked.handOff().compositions;
    if (compositions.size() < 2) {
        return;
    }
    findings.report({}, [&] {
        const auto& name = checked.timeline().compositionName;
        return FindingText{
            .sentence = "The file holds " + std::to_string(compositions.size()) +
                        " compositions, and " + (name ? inQuotes(*name) : "the first one") +
                        " is the one that is read: export each sequence to a file of its own.",
            .found = countValue(compositions.size()),
            .wanted = countValue(1)};
    });
}

}  // namespace

constinit const Rule compositions{
    .id = "compositions",
    .severity = Severity::warning,
    .title = "more than one composition in the file",
    .what = "The file holds one composition.",
    .why = "Programs take one of them, and not all the same.",
    .source = "One of fifteen published delivery pages and guides names it.",
    .repair = "Export one sequence a file.",
    .look = look};

}  // namespace trellant::check
