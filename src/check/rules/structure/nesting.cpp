// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

namespace trellant::check {

namespace {

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    const auto& contents = checked.handOff().contents;
    if (!contents || contents->nestedGroups <= 0) {
        return;
    }
    findings.report({}, [&] {
        const auto count = static_cast<std::size_t>(contents->nestedGroups);
        return FindingText{.sentence = counted(count, "group", "groups") +
                                       " of tracks within a track were flattened: see whether the "
                                       "right layer is heard, or flatten them before the export.",
                           .found = countValue(count),
                           .wanted = countValue(0)};
    });
}

}  // namespace

constinit const Rule nesting{
    .id = "nesting",
    .severity = Severity::info,
    .title = "nested material was flattened",
    .what = "No track holds a group of tracks.",
    .why = "Of a nested sequence some programs play one layer, others all.",
    .source = "Three of fifteen published delivery pages and guides ask for flat sequences.",
    .repair = "Break nested sequences and groups apart before the export.",
    .look = look};

}  // namespace trellant::check
