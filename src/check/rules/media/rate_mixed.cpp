// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <set>

namespace trellant::check {

namespace {

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    std::set<AAFRational> rates;
    for (const CheckedSource& source : checked.sources()) {
        if (source.clips != 0) {
            rates.insert(source.essence->sampleRate);
        }
    }
    if (rates.size() < 2) {
        return;
    }
    findings.report({}, [&] {
        const std::vector<AAFRational> all(rates.begin(), rates.end());
        return FindingText{.sentence = "Audio files have different sample rates (" + anyOf(all) +
                                       " Hz); one is wanted: convert them to the session's rate.",
                           .found = countValue(rates.size()),
                           .wanted = countValue(1)};
    });
}

}  // namespace

constinit const Rule rateMixed{
    .id = "rate-mixed",
    .severity = Severity::warning,
    .title = "several sample rates in one file",
    .what = "All audio files that are played have one sample rate.",
    .why = "Some of them are converted on the way in, and edits on samples move.",
    .source = "One of fifteen published delivery pages and guides names it.",
    .repair = "Convert audio of another rate when it is imported into the session.",
    .look = look};

}  // namespace trellant::check
