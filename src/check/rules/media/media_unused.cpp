// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

namespace trellant::check {

namespace {

void look(const CheckedHandOff& checked, const RuleSettings&, FindingList& findings) {
    const auto& contents = checked.handOff().contents;
    if (!contents || contents->unusedMedia <= 0) {
        return;
    }
    findings.report({}, [&] {
        std::string names;
        for (const std::string& name : contents->unusedNames) {
            names += (names.empty() ? "" : ", ") + inQuotes(name);
        }
        const auto count = static_cast<std::size_t>(contents->unusedMedia);
        return FindingText{.sentence = counted(count, "audio file", "audio files") +
                                       " inside the OMF file (" + names +
                                       (count > contents->unusedNames.size() ? ", ..." : "") +
                                       ") no clip plays, " + std::to_string(contents->unusedBytes) +
                                       " bytes in all: remove unused audio before the export.",
                           .found = numberValue(AAFRational(contents->unusedBytes)),
                           .wanted = numberValue(AAFRational(0)),
                           .unit = "bytes"};
    });
}

}  // namespace

constinit const Rule mediaUnused{
    .id = "media-unused",
    .severity = Severity::info,
    .title = "embedded audio that no clip plays",
    .what = "Every piece of audio inside the OMF file is played by a clip.",
    .why = "It makes the file large, and may be a track that was lost.",
    .source = "One of fifteen published delivery pages and guides asks for used audio only.",
    .repair = "Remove unused clips from the session, or export the selection only.",
    .look = look};

}  // namespace trellant::check
