// SPDX-License-Identifier: Apache-2.0
#include "profile_reader.h"

#include <trellant/base/nearest_word.h>
#include <trellant/base/printable_text.h>
#include <trellant/json/json_decode.h>
#include <trellant/model/timecode_label.h>

#include <algorithm>
#include <set>
#include <utility>

namespace trellant::check {

namespace {

constexpr double largestNumber = 1e15;
constexpr std::size_t longestText = 1'024;
constexpr std::size_t mostValues = 1'000;

std::string inQuotes(std::string_view text) {
    return "\"" + printableText(text) + "\"";
}

/// " did you mean "handles"?", or which there are.
std::string hintFor(std::string_view typed, const std::vector<std::string>& known) {
    if (const auto nearest = nearestWord(typed, known)) {
        return "; did you mean " + inQuotes(*nearest) + "?";
    }
    std::string list;
    for (const std::string& word : known) {
        list += (list.empty() ? "" : ", ") + word;
    }
    return "; there are " + list;
}

std::vector<std::string> ruleNames() {
    std::vector<std::string> names;
    for (const Rule* const rule : allRules()) {
        names.emplace_back(rule->id);
    }
    return names;
}

const std::vector<std::string>& severityWords() {
    static const std::vector<std::string> words{"off", "info", "warning", "error"};
    return words;
}

JsonTree decoded(std::string_view text, const std::string& name) {
    try {
        return decodeJson<JsonTree>(text);
    } catch (const JsonDecodingError& error) {
        throw ProfileError("profile " + inQuotes(name) + ": " + error.what());
    }
}

}  // namespace

ProfileReader::ProfileReader(std::string_view text, std::string name)
    : name_(std::move(name)), document_(decoded(text, name_)) {
    static const std::vector<std::string> keys{"$schema", "profileVersion", "name",  "extends",
                                               "audio",   "rules",          "accept"};
    bool hasVersion = false;
    std::set<std::string_view> seen;
    for (const JsonTree::Member& member : objectOf(document_, "")) {
        if (std::find(keys.begin(), keys.end(), member.key) == keys.end()) {
            refuse(member.key, "there is no such key" + hintFor(member.key, keys));
        }
        if (!seen.insert(member.key).second) {
            refuse(member.key, "stands there twice");
        }
        if (member.key == "profileVersion") {
            hasVersion = true;
            if (!(numberOf(member.value, member.key) == AAFRational::one())) {
                refuse(member.key, "is 1 in every profile that this version reads");
            }
        }
    }
    if (!hasVersion) {
        refuse("profileVersion", "is missing; it is 1");
    }
}

std::optional<std::string> ProfileReader::extended() const {
    for (const JsonTree::Member& member : objectOf(document_, "")) {
        if (member.key == "extends") {
            return textOf(member.value, member.key);
        }
    }
    return std::nullopt;
}

Profile ProfileReader::over(Profile base) const {
    base.name = name_;
    for (const JsonTree::Member& member : objectOf(document_, "")) {
        if (member.key == "name") {
            base.name = textOf(member.value, member.key);
        } else if (member.key == "audio") {
            const bool* const audio = std::get_if<bool>(&member.value.value);
            if (audio == nullptr) {
                refuse(member.key, "is true or false, not " + std::string(member.value.kind()));
            }
            base.audio = *audio;
        } else if (member.key == "rules") {
            std::set<std::string_view> seen;
            for (const JsonTree::Member& rule : objectOf(member.value, member.key)) {
                if (!seen.insert(rule.key).second) {
                    refuse("rules." + rule.key, "stands there twice");
                }
                readRule(rule, base);
            }
        } else if (member.key == "accept") {
            readAcceptances(member.value, base);
        }
    }
    return base;
}

void ProfileReader::readRule(const JsonTree::Member& member, Profile& profile) const {
    const std::string path = "rules." + member.key;
    const Rule* const rule = ruleNamed(member.key);
    if (rule == nullptr) {
        refuse(path, "there is no such rule" + hintFor(member.key, ruleNames()));
    }
    const auto rules = allRules();
    const auto position =
        static_cast<std::size_t>(std::find(rules.begin(), rules.end(), rule) - rules.begin());
    RuleSettings& settings = profile.settings.at(position);
    std::set<std::string_view> seen;
    for (const JsonTree::Member& given : objectOf(member.value, path)) {
        const std::string place = path + "." + given.key;
        if (!seen.insert(given.key).second) {
            refuse(place, "stands there twice");
        }
        if (given.key == "severity") {
            readSeverity(given.value, place, settings);
            continue;
        }
        const auto parameter =
            std::find_if(rule->parameters.begin(), rule->parameters.end(),
                         [&given](const Parameter& one) { return one.key == given.key; });
        if (parameter == rule->parameters.end()) {
            std::vector<std::string> keys{"severity"};
            for (const Parameter& one : rule->parameters) {
                keys.emplace_back(one.key);
            }
            refuse(place, "the rule has no such key" + hintFor(given.key, keys));
        }
        settings.values.at(static_cast<std::size_t>(parameter - rule->parameters.begin())).second =
            valueOf(*parameter, given.value, place);
    }
}

void ProfileReader::readSeverity(const JsonTree& value, const std::string& path,
                                 RuleSettings& settings) const {
    const std::string& word = textOf(value, path);
    const auto& words = severityWords();
    const auto found = std::find(words.begin(), words.end(), word);
    if (found == words.end()) {
        refuse(path, inQuotes(word) + " is no severity" + hintFor(word, words));
    }
    settings.isOn = found != words.begin();
    if (settings.isOn) {
        settings.severity = allSeverities.at(static_cast<std::size_t>(found - words.begin()) - 1);
    }
}

ParameterValue ProfileReader::valueOf(const Parameter& parameter, const JsonTree& value,
                                      const std::string& path) const {
    const auto elements = [&](std::string_view what) -> const JsonTree::Array& {
        const auto* const array = std::get_if<JsonTree::Array>(&value.value);
        if (array == nullptr || array->size() > mostValues) {
            refuse(path, "is a list of " + std::string(what) + ", with one or more, not " +
                             std::string(value.kind()));
        }
        return *array;
    };
    switch (parameter.kind) {
        case ParameterKind::number:
            return numberOf(value, path);
        case ParameterKind::numbers: {
            std::vector<AAFRational> numbers;
            for (const JsonTree& one : elements("numbers")) {
                numbers.push_back(numberOf(one, path));
            }
            return numbers;
        }
        case ParameterKind::timecode: {
            const std::string& text = textOf(value, path);
            if (!isTimecodeText(text)) {
                refuse(path, inQuotes(text) + " is no timecode; one is written as 01:00:00:00");
            }
            return text;
        }
        case ParameterKind::patterns: {
            std::vector<std::string> patterns;
            for (const JsonTree& one : elements("texts")) {
                patterns.push_back(textOf(one, path));
            }
            return patterns;
        }
        case ParameterKind::word: {
            const std::string& text = textOf(value, path);
            const std::vector<std::string> words(parameter.words.begin(), parameter.words.end());
            if (std::find(words.begin(), words.end(), text) == words.end()) {
                refuse(path, inQuotes(text) + " is none of its words" + hintFor(text, words));
            }
            return text;
        }
    }
    refuse(path, "has no kind");
}

Acceptance ProfileReader::acceptanceOf(const JsonTree& value, const std::string& path) const {
    static const std::vector<std::string> keys{"rule", "file",      "track",
                                               "clip", "audioFile", "reason"};
    Acceptance acceptance;
    std::set<std::string_view> seen;
    for (const JsonTree::Member& member : objectOf(value, path)) {
        const std::string place = path + "." + member.key;
        const auto key = std::find(keys.begin(), keys.end(), member.key);
        if (key == keys.end()) {
            refuse(place, "there is no such key" + hintFor(member.key, keys));
        }
        if (!seen.insert(member.key).second) {
            refuse(place, "stands there twice");
        }
        const std::string& text = textOf(member.value, place);
        switch (key - keys.begin()) {
            case 0:
                acceptance.rule = text;
                break;
            case 1:
                acceptance.file = text;
                break;
            case 2:
                acceptance.track = text;
                break;
            case 3:
                acceptance.clip = text;
                break;
            case 4:
                acceptance.audioFile = text;
                break;
            default:
                acceptance.reason = text;
        }
    }
    if (!seen.contains("rule") || ruleNamed(acceptance.rule) == nullptr) {
        refuse(path + ".rule", seen.contains("rule")
                                   ? "there is no such rule" + hintFor(acceptance.rule, ruleNames())
                                   : std::string("is missing"));
    }
    if (acceptance.reason.empty()) {
        refuse(path + ".reason", "is missing: whoever reads the verdict asks why");
    }
    return acceptance;
}

void ProfileReader::readAcceptances(const JsonTree& value, Profile& profile) const {
    // An empty list is read as nothing.
    if (std::holds_alternative<std::monostate>(value.value)) {
        return;
    }
    const auto* const entries = std::get_if<JsonTree::Array>(&value.value);
    if (entries == nullptr) {
        refuse("accept", "is a list, not " + std::string(value.kind()));
    }
    for (std::size_t i = 0; i < entries->size(); ++i) {
        if (profile.accept.size() == mostAcceptances) {
            refuse("accept", "has more than " + std::to_string(mostAcceptances) + " entries");
        }
        profile.accept.push_back(acceptanceOf((*entries)[i], "accept[" + std::to_string(i) + "]"));
    }
}

const JsonTree::Object& ProfileReader::objectOf(const JsonTree& value,
                                                const std::string& path) const {
    const auto* const object = std::get_if<JsonTree::Object>(&value.value);
    if (object == nullptr) {
        refuse(path, "is an object, not " + std::string(value.kind()));
    }
    return *object;
}

const std::string& ProfileReader::textOf(const JsonTree& value, const std::string& path) const {
    const auto* const text = std::get_if<std::string>(&value.value);
    if (text == nullptr) {
        refuse(path, "is a text, not " + std::string(value.kind()));
    }
    if (text->size() > longestText) {
        refuse(path, "is longer than " + std::to_string(longestText) + " bytes");
    }
    return *text;
}

AAFRational ProfileReader::numberOf(const JsonTree& value, const std::string& path) const {
    const auto* const number = std::get_if<double>(&value.value);
    if (number == nullptr) {
        refuse(path, "is a number, not " + std::string(value.kind()));
    }
    if (!(*number >= 0) || *number > largestNumber) {
        refuse(path, "is a number from 0 to 10 to the power of 15");
    }
    return AAFRational::approximation(*number);
}

void ProfileReader::refuse(const std::string& path, const std::string& reason) const {
    const std::string place = path.empty() ? "the document" : printableText(path);
    throw ProfileError(
        "profile " + inQuotes(name_) + ": " + place +
        (reason.starts_with("there") || reason.starts_with("the ") || reason.starts_with("\"")
             ? ": "
             : " ") +
        reason);
}

Profile standardProfile() {
    Profile profile{.name = "post"};
    for (const Rule* const rule : allRules()) {
        RuleSettings settings{.severity = rule->severity};
        for (const Parameter& parameter : rule->parameters) {
            settings.values.emplace_back().first = parameter.key;
        }
        profile.settings.push_back(std::move(settings));
    }
    // The defaults are written as a profile has them, and read as one.
    std::string rules;
    for (const Rule* const rule : allRules()) {
        std::string values;
        for (const Parameter& parameter : rule->parameters) {
            values += (values.empty() ? "\"" : ",\"") + std::string(parameter.key) +
                      "\":" + std::string(parameter.standard);
        }
        rules += (rules.empty() ? "\"" : ",\"") + std::string(rule->id) + "\":{" + values + "}";
    }
    return ProfileReader("{\"profileVersion\":1,\"rules\":{" + rules + "}}", "post")
        .over(std::move(profile));
}

}  // namespace trellant::check
