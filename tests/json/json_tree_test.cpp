// SPDX-License-Identifier: Apache-2.0
// JSON as it stands.
#include <trellant/json/json_decode.h>
#include <trellant/json/json_tree.h>

#include <gtest/gtest.h>

#include <string>
#include <variant>

namespace trellant {
namespace {

const JsonTree::Object& object(const JsonTree& tree) {
    return std::get<JsonTree::Object>(tree.value);
}

TEST(JsonTree, KeepsEachKindOfValueInOrder) {
    const auto tree = decodeJson<JsonTree>(R"({"b":[1,-2.5e1],"a":"x","t":true,"n":null,"b":{}})");
    ASSERT_EQ(object(tree).size(), 5U);
    const auto& numbers = std::get<JsonTree::Array>(object(tree)[0].value.value);
    EXPECT_EQ(object(tree)[0].key, "b");
    EXPECT_EQ(std::get<double>(numbers.at(0).value), 1);
    EXPECT_EQ(std::get<double>(numbers.at(1).value), -25);
    EXPECT_EQ(std::get<std::string>(object(tree)[1].value.value), "x");
    EXPECT_TRUE(std::get<bool>(object(tree)[2].value.value));
    EXPECT_TRUE(std::holds_alternative<std::monostate>(object(tree)[3].value.value));
    // The second of two equal keys stands beside the first.
    EXPECT_EQ(object(tree)[4].key, "b");
    EXPECT_TRUE(object(object(tree)[4].value).empty());
}

TEST(JsonTree, NamesKinds) {
    EXPECT_EQ(decodeJson<JsonTree>("{}").kind(), "an object");
    EXPECT_EQ(decodeJson<JsonTree>("[0]").kind(), "an array");
    EXPECT_EQ(decodeJson<JsonTree>("7").kind(), "a number");
    EXPECT_EQ(decodeJson<JsonTree>("\"7\"").kind(), "a string");
    EXPECT_EQ(decodeJson<JsonTree>("false").kind(), "a boolean");
    EXPECT_EQ(decodeJson<JsonTree>("null").kind(), "null");
}

TEST(JsonTree, EightLevelsAreReadAndNineRefused) {
    const auto nested = [](std::size_t levels) {
        return std::string(levels, '[') + "1" + std::string(levels, ']');
    };
    EXPECT_EQ(decodeJson<JsonTree>(nested(8)).kind(), "an array");
    EXPECT_THROW(static_cast<void>(decodeJson<JsonTree>(nested(9))), JsonDecodingError);
    EXPECT_THROW(static_cast<void>(decodeJson<JsonTree>(nested(100'000))), JsonDecodingError);
    std::string objects;
    for (int level = 0; level < 9; ++level) {
        objects += "{\"k\":";
    }
    EXPECT_THROW(static_cast<void>(decodeJson<JsonTree>(objects + "1" + std::string(9, '}'))),
                 JsonDecodingError);
}

TEST(JsonTree, FaultsOfTheTextNameTheirPlace) {
    try {
        static_cast<void>(decodeJson<JsonTree>(R"({"rules":{"handles":{"seconds":1e999}}})"));
        FAIL() << "a number beyond the doubles is no value";
    } catch (const JsonDecodingError& error) {
        EXPECT_EQ(error.keyPath(), "rules.handles.seconds");
    }
}

}  // namespace
}  // namespace trellant
