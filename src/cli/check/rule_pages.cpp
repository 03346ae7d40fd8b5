// SPDX-License-Identifier: Apache-2.0
#include "rule_pages.h"

#include "terminal/json_line.h"
#include "terminal/table.h"
#include "terminal/wrapped_text.h"

#include <trellant/base/precondition.h>
#include <trellant/handoff/timeline_text.h>

#include <algorithm>
#include <string_view>
#include <variant>

namespace trellant::cli {

namespace {

using check::Parameter;
using check::Profile;
using check::Rule;
using check::RuleSettings;

const RuleSettings& settingsOf(const Rule& rule, const Profile& profile) {
    const auto rules = check::allRules();
    const auto found = std::find(rules.begin(), rules.end(), &rule);
    precondition(found != rules.end(), "the rule is one of all rules");
    return profile.settings.at(static_cast<std::size_t>(found - rules.begin()));
}

std::string severityText(const RuleSettings& settings) {
    return settings.isOn ? std::string(check::severityWord(settings.severity)) : "off";
}

struct ValueText {
    std::string operator()(const AAFRational& value) const { return plainRate(value); }
    std::string operator()(const std::string& value) const { return value; }
    template <class T>
    std::string operator()(const std::vector<T>& values) const {
        std::string text;
        for (const T& value : values) {
            text += (text.empty() ? "" : ", ") + (*this)(value);
        }
        return text;
    }
};

std::string_view needsText(const Rule& rule) {
    switch (rule.needs) {
        case check::RuleNeeds::file:
            return "file";
        case check::RuleNeeds::timeline:
            return "timeline";
        case check::RuleNeeds::sound:
            return "sound";
    }
    return "";
}

}  // namespace

std::string ruleList(const Profile& profile, std::size_t columns, bool colour) {
    Table table{.columns = {{.title = "Rule"},
                            {.title = "Severity"},
                            {.title = "What is found", .mayShrink = true}},
                .rows = {}};
    for (const Rule* const rule : check::allRules()) {
        table.rows.push_back({std::string(rule->id), severityText(settingsOf(*rule, profile)),
                              std::string(rule->title)});
    }
    return aligned(std::move(table), columns, colour);
}

std::string ruleLines(const Profile& profile) {
    std::string lines;
    for (const Rule* const rule : check::allRules()) {
        const RuleSettings& settings = settingsOf(*rule, profile);
        lines += jsonLine([&](JsonLine& line) {
            line.text("rule", rule->id)
                .text("severity", severityText(settings))
                .text("looksAt", needsText(*rule))
                .text("title", rule->title)
                .text("what", rule->what)
                .text("why", rule->why)
                .text("source", rule->source)
                .text("repair", rule->repair)
                .objects("parameters", settings.values, [&](JsonLine& item, const auto& value) {
                    const auto parameter = std::find_if(
                        rule->parameters.begin(), rule->parameters.end(),
                        [&value](const Parameter& one) { return one.key == value.first; });
                    item.text("key", value.first)
                        .text("value", std::visit(ValueText(), value.second))
                        .text("meaning", parameter->meaning);
                });
        });
    }
    return lines;
}

std::string rulePage(const Rule& rule, const Profile& profile, std::size_t columns, bool colour) {
    const RuleSettings& settings = settingsOf(rule, profile);
    const Paragraph paragraph{.indent = 2, .columns = columns, .hasColour = colour};
    std::string page = painted(rule.id, Paint::bold, colour) + "  " + severityText(settings) +
                       " in the profile " + profile.name + "\n";
    const auto part = [&](std::string_view title, std::string_view text) {
        page += "\n" + painted(title, Paint::bold, colour) + "\n" +
                wrapped(text, paragraph, std::nullopt);
    };
    part("What", rule.what);
    part("Why", rule.why);
    part("Where the default comes from", rule.source);
    part("How to put it right", rule.repair);
    if (!settings.values.empty()) {
        page += "\n" + painted("Values in the profile", Paint::bold, colour) + "\n";
        for (std::size_t i = 0; i < settings.values.size(); ++i) {
            const auto& [key, value] = settings.values[i];
            page += wrapped(std::string(key) + ": " + std::visit(ValueText(), value) + " (" +
                                std::string(rule.parameters[i].meaning) + ")",
                            paragraph, std::nullopt);
        }
    }
    return page;
}

}  // namespace trellant::cli
