// SPDX-License-Identifier: Apache-2.0
#include "rule_words.h"
#include "rules/rules.h"

#include <trellant/base/text.h>

#include <algorithm>
#include <array>
#include <limits>

namespace trellant::check {

namespace {

constexpr std::array parameters{
    Parameter{.key = "bytes",
              .kind = ParameterKind::number,
              .standard = "2147483648",
              .meaning = "the size, in bytes, from which on a file is too large"}};

bool isDigit(char character) noexcept {
    return character >= '0' && character <= '9';
}

/// Whether the name says that the file is one of several: "mix_part2.omf", "mix part 1.omf",
/// "mix 2of3.omf".
bool isNamedAsPart(const std::string& name) {
    const std::string text = lowerCased(name);
    for (std::size_t at = text.find("part"); at != std::string::npos;
         at = text.find("part", at + 1)) {
        const bool isWord = at == 0 || !(text[at - 1] >= 'a' && text[at - 1] <= 'z');
        const std::size_t behind = text.find_first_not_of(" _-.", at + 4);
        if (isWord && behind != std::string::npos && isDigit(text[behind])) {
            return true;
        }
    }
    for (std::size_t at = text.find("of"); at != std::string::npos; at = text.find("of", at + 1)) {
        const std::size_t before =
            at == 0 ? std::string::npos : text.find_last_not_of(" _-", at - 1);
        const std::size_t behind = text.find_first_not_of(" _-", at + 2);
        if (before != std::string::npos && behind != std::string::npos && isDigit(text[before]) &&
            isDigit(text[behind])) {
            return true;
        }
    }
    return false;
}

void look(const CheckedHandOff& checked, const RuleSettings& settings, FindingList& findings) {
    const AAFRational& limit = settings.number("bytes");
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const AAFRational bytes(static_cast<std::int64_t>(std::min(checked.file().bytes, most)));
    if (limit <= bytes) {
        findings.report({}, [&] {
            return FindingText{.sentence = "The file has " + std::to_string(checked.file().bytes) +
                                           " bytes, and many programs read OMF files of less than "
                                           "2 GB only: export it in parts, or with linked audio.",
                               .found = numberValue(bytes),
                               .wanted = numberValue(limit),
                               .unit = "bytes"};
        });
    } else if (isNamedAsPart(checked.file().name)) {
        findings.report({}, [&] {
            return FindingText{
                .sentence = "The file's name, " + inQuotes(checked.file().name) +
                            ", says that it is one of several: see that all parts are there, and "
                            "that they start alike.",
                .found = textValue(checked.file().name),
                .wanted = textValue("one whole file")};
        });
    }
}

}  // namespace

constinit const Rule fileSize{
    .id = "file-size",
    .severity = Severity::warning,
    .needs = RuleNeeds::file,
    .title = "the file is too large, or one of several",
    .what = "The file is smaller than the limit, and its name does not say that it is a part.",
    .why = "Places in an OMF file are counted in 32 bits, and many programs stop at 2 GB.",
    .source = "Five of fifteen published delivery pages and guides ask for less than 2 GB.",
    .repair = "Export reel by reel or track group by track group, or with linked audio.",
    .parameters = parameters,
    .look = look};

}  // namespace trellant::check
