// SPDX-License-Identifier: Apache-2.0
// A rule of delivery: what it is called, what it asks, why, and the function that looks.
#pragma once

#include <trellant/check/finding.h>
#include <trellant/model/rational.h>

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace check {

class CheckedHandOff;
class FindingList;

enum class ParameterKind {
    /// 0 or more.
    number,
    /// One or more of them.
    numbers,
    /// A label, "01:00:00:00".
    timecode,
    /// Texts in which "*" stands for any characters and "?" for one; at least one of them.
    patterns,
    /// One of the parameter's words.
    word
};

using ParameterValue =
    std::variant<AAFRational, std::vector<AAFRational>, std::string, std::vector<std::string>>;

struct Parameter {
    std::string_view key;
    ParameterKind kind = ParameterKind::number;
    /// The default, as JSON.
    std::string_view standard;
    /// With its unit, for people.
    std::string_view meaning;
    /// What a word may be.
    std::span<const std::string_view> words{};
};

/// A rule's parameters and weight as a profile has them.
struct RuleSettings {
    bool isOn = true;
    Severity severity = Severity::warning;
    /// One for each of the rule's parameters, in their order.
    std::vector<std::pair<std::string_view, ParameterValue>> values{};

    /// The value of a parameter that the rule has and whose kind gives such one; another key stops
    /// the process. All live as long as the settings.
    [[nodiscard]] const AAFRational& number(std::string_view key) const;
    [[nodiscard]] const std::vector<AAFRational>& numbers(std::string_view key) const;
    [[nodiscard]] const std::string& text(std::string_view key) const;
    [[nodiscard]] const std::vector<std::string>& texts(std::string_view key) const;
};

/// What a rule has to be told before it can look.
enum class RuleNeeds {
    /// Of the file as a whole: told of files too whose timeline is not read.
    file,
    timeline,
    sound
};

struct Rule {
    /// "handles": lower case and hyphens.
    std::string_view id;
    /// Where no profile says otherwise.
    Severity severity = Severity::warning;
    RuleNeeds needs = RuleNeeds::timeline;
    /// For a table: a few words.
    std::string_view title;
    /// Sentences for editors: what is looked at, why it matters, where the default comes from, how
    /// it is put right in the exporting program.
    std::string_view what;
    std::string_view why;
    std::string_view source;
    std::string_view repair;
    std::span<const Parameter> parameters{};
    /// Reports all that it finds, worst first where findings differ in weight.
    void (*look)(const CheckedHandOff& checked, const RuleSettings& settings,
                 FindingList& findings) = nullptr;
};

/// Every rule, in the order in which they are told; lives as long as the process.
[[nodiscard]] std::span<const Rule* const> allRules();
/// Null where there is none of that name.
[[nodiscard]] const Rule* ruleNamed(std::string_view id);
/// What somebody who mistyped a rule may have meant; empty where nothing is near.
[[nodiscard]] std::string nearestRule(std::string_view id);

/// All rules with their defaults as a table in Markdown, as docs/check.md has it.
[[nodiscard]] std::string ruleTable();

}  // namespace check
}  // namespace trellant
