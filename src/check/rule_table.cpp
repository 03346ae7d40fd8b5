// SPDX-License-Identifier: Apache-2.0
// The rules, in the order in which they are told.
#include "rules/rules.h"

#include <trellant/base/nearest_word.h>
#include <trellant/check/rule.h>

#include <algorithm>
#include <array>

namespace trellant::check {

namespace {

constexpr std::array rules{
    &mediaMissing,  &mediaAmbiguous, &mediaLinked,   &mediaPastEnd, &mediaUnused,  &lossDropped,
    &lossSound,     &effects,        &nesting,       &omfVersion,   &fileSize,     &compositions,
    &rateExpected,  &rateMixed,      &depthExpected, &depthMixed,   &channelsMono, &handles,
    &startTimecode, &frameRate,      &rateLabel,     &offFrame,     &overlap,      &tinyClip,
    &duplicate,     &pairs,          &trackNames,    &muted,        &gainRange,    &namesOdd,
    &popHead,       &silent,         &clipped,
};

std::string defaultsOf(const Rule& rule) {
    std::string text;
    for (const Parameter& parameter : rule.parameters) {
        text += text.empty() ? "" : ", ";
        text += "`" + std::string(parameter.key) + "`: `" + std::string(parameter.standard) + "`";
    }
    return text;
}

}  // namespace

std::span<const Rule* const> allRules() {
    return rules;
}

const Rule* ruleNamed(std::string_view id) {
    const auto found =
        std::find_if(rules.begin(), rules.end(), [id](const Rule* rule) { return rule->id == id; });
    return found == rules.end() ? nullptr : *found;
}

std::string nearestRule(std::string_view id) {
    std::vector<std::string> ids;
    ids.reserve(rules.size());
    for (const Rule* const rule : rules) {
        ids.emplace_back(rule->id);
    }
    return nearestWord(id, ids).value_or("");
}

std::string ruleTable() {
    std::string table =
        "| rule | severity | what is found | default | looks at |\n"
        "|---|---|---|---|---|\n";
    for (const Rule* const rule : rules) {
        const std::string_view looksAt = rule->needs == RuleNeeds::file       ? "file"
                                         : rule->needs == RuleNeeds::timeline ? "timeline"
                                                                              : "sound";
        table += "| `" + std::string(rule->id) + "` | " +
                 std::string(severityWord(rule->severity)) + " | " + std::string(rule->title) +
                 " | " + defaultsOf(*rule) + " | " + std::string(looksAt) + " |\n";
    }
    return table;
}

}  // namespace trellant::check
