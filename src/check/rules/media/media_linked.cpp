// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <array>

namespace trellant::check {

namespace {

constexpr std::array<std::string_view, 3> ways{"any", "embedded", "linked"};
constexpr std::array parameters{
    Parameter{.key = "media",
              .kind = ParameterKind::word,
              .standard = "\"any\"",
              .meaning = "where audio is to lie: inside the OMF file, in files of its own, or any",
              .words = ways}};

void look(const CheckedHandOff& checked, const RuleSettings& settings, FindingList& findings) {
    const std::string& wanted = settings.text("media");
    if (wanted == "any") {
        return;
    }
    for (const CheckedSource& source : checked.sources()) {
        const std::string_view found = source.essence->embedded ? "embedded" : "linked";
        if (found != wanted && source.clips != 0) {
            findings.report(placeOf(checked, source), [&] {
                return FindingText{
                    .sentence = sentence(sourceText(source)) +
                                (source.essence->embedded
                                     ? " lies inside the OMF file and was wanted as a file of its "
                                       "own: export again with linked audio."
                                     : " is a file of its own and was wanted inside the OMF file: "
                                       "export again with embedded audio."),
                    .found = textValue(found),
                    .wanted = textValue(wanted)};
            });
        }
    }
}

}  // namespace

constinit const Rule mediaLinked{
    .id = "media-linked",
    .severity = Severity::error,
    .title = "audio is linked where embedded was wanted, or the other way",
    .what = "Audio lies where the profile wants it: inside the OMF file, or in files of its own.",
    .why = "Embedded audio cannot be left behind; linked audio is not bound by the size of a file.",
    .source =
        "Three of fifteen published delivery pages and guides want it embedded, one linked; "
        "so the default takes both.",
    .repair = "Choose embedded (consolidated) or linked audio in the export dialogue.",
    .parameters = parameters,
    .look = look};

}  // namespace trellant::check
