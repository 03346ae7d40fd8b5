// SPDX-License-Identifier: Apache-2.0
// The page and the schema say of the rules what the program does.
#include <trellant/check/profile.h>
#include <trellant/check/rule.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>
#include <string>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::check {
namespace {

using nlohmann::json;

TEST(PublishedRules, AreThoseOfTheProgram) {
    const std::string page = testing::textOf(testing::readFile(TRELLANT_CHECK_PAGE));
    const std::string opening = "<!-- The table of the program; a test compares. -->\n";
    const auto start = page.find(opening);
    ASSERT_NE(start, std::string::npos);
    const auto end = page.find("<!-- The table ends. -->\n", start);
    ASSERT_NE(end, std::string::npos);
    const auto tableStart = start + opening.size();
    EXPECT_EQ(page.substr(tableStart, end - tableStart), ruleTable());
}

json profileSchema() {
    return json::parse(testing::textOf(testing::readFile(TRELLANT_PROFILE_SCHEMA)));
}

/// What the schema says of a value of that kind, without the words for people.
json kindOf(const Parameter& parameter) {
    switch (parameter.kind) {
        case ParameterKind::number:
            return {{"$ref", "#/$defs/number"}};
        case ParameterKind::numbers:
            return {{"$ref", "#/$defs/numbers"}};
        case ParameterKind::timecode:
            return {{"$ref", "#/$defs/timecode"}};
        case ParameterKind::patterns:
            return {{"$ref", "#/$defs/patterns"}};
        case ParameterKind::word:
            break;
    }
    json words = json::array();
    for (const std::string_view word : parameter.words) {
        words.push_back(word);
    }
    return {{"enum", words}};
}

TEST(ProfileSchema, KnowsEachRuleAndItsKeys) {
    const json rules = profileSchema()["properties"]["rules"];
    EXPECT_EQ(rules["additionalProperties"], false);
    std::set<std::string> known;
    for (const Rule* const rule : allRules()) {
        const std::string id(rule->id);
        known.insert(id);
        ASSERT_TRUE(rules["properties"].contains(id)) << id;
        const json& schema = rules["properties"][id];
        EXPECT_EQ(schema["additionalProperties"], false) << id;
        EXPECT_EQ(schema["description"], rule->title) << id;
        EXPECT_EQ(schema["properties"].size(), rule->parameters.size() + 1) << id;
        EXPECT_EQ(schema["properties"]["severity"], (json{{"$ref", "#/$defs/severity"}})) << id;
        for (const Parameter& parameter : rule->parameters) {
            json said = schema["properties"][std::string(parameter.key)];
            EXPECT_EQ(said["description"], parameter.meaning) << id;
            EXPECT_EQ(said["default"], json::parse(parameter.standard)) << id;
            said.erase("description");
            said.erase("default");
            EXPECT_EQ(said, kindOf(parameter)) << id;
        }
    }
    for (const auto& [id, schema] : rules["properties"].items()) {
        EXPECT_TRUE(known.contains(id)) << id;
    }
    json ids = profileSchema()["$defs"]["rule"]["enum"];
    EXPECT_EQ(std::set<std::string>(ids.begin(), ids.end()), known);
}

}  // namespace
}  // namespace trellant::check
