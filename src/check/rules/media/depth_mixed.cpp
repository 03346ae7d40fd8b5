// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <set>

namespace trellant::check {

namespace {

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    std::set<AAFRational> depths;
    for (const CheckedSource& source : checked.sources()) {
        if (source.clips != 0 && source.essence->bitDepth) {
            depths.insert(AAFRational(*source.essence->bitDepth));
        }
    }
    if (depths.size() < 2) {
        return;
    }
    findings.report({}, [&] {
        const std::vector<AAFRational> all(depths.begin(), depths.end());
        return FindingText{
            .sentence = "Audio files have different bit depths (" + anyOf(all) +
                        "); one is wanted: choose the bit depth in the export dialogue.",
            .found = countValue(depths.size()),
            .wanted = countValue(1)};
    });
}

}  // namespace

constinit const Rule depthMixed{
    .id = "depth-mixed",
    .severity = Severity::info,
    .title = "several bit depths in one file",
    .what = "All audio files that are played have one bit depth.",
    .why = "It hints at audio that came in another way than the rest.",
    .source = "One of fifteen published delivery pages and guides names it.",
    .repair = "Let the export write all audio with one bit depth.",
    .look = look};

}  // namespace trellant::check
