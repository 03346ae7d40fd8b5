// SPDX-License-Identifier: Apache-2.0
// Lines of JSON, written member by member.
#include "look/json_row.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace trellant::testing {

using cli::JsonRow;

TEST(JsonRow, WithoutMembersIsAnEmptyObject) {
    EXPECT_EQ(JsonRow().line(), "{}\n");
}

TEST(JsonRow, KeepsTheOrderInWhichMembersAreNamed) {
    EXPECT_EQ(JsonRow()
                  .text("z", "Anna")
                  .integer("a", -7)
                  .number("m", 0.5)
                  .boolean("b", true)
                  .boolean("c", false)
                  .line(),
              "{\"z\":\"Anna\",\"a\":-7,\"m\":0.5,\"b\":true,\"c\":false}\n");
}

TEST(JsonRow, WritesAbsentValuesAsNull) {
    EXPECT_EQ(JsonRow()
                  .text("t", std::optional<std::string>())
                  .integer("i", std::optional<std::int64_t>())
                  .number("n", std::optional<double>())
                  .line(),
              "{\"t\":null,\"i\":null,\"n\":null}\n");
}

TEST(JsonRow, WritesPresentValuesOfOptionals) {
    EXPECT_EQ(JsonRow()
                  .text("t", std::optional<std::string>("x"))
                  .integer("i", std::optional<std::int64_t>(1))
                  .number("n", std::optional<double>(2.5))
                  .text("s", std::string("y"))
                  .line(),
              "{\"t\":\"x\",\"i\":1,\"n\":2.5,\"s\":\"y\"}\n");
}

TEST(JsonRow, SeparatesNullsFromTheirNeighbours) {
    EXPECT_EQ(JsonRow().integer("a", 1).null("b").integer("c", 2).null("d").null("e").line(),
              "{\"a\":1,\"b\":null,\"c\":2,\"d\":null,\"e\":null}\n");
}

TEST(JsonRow, NestsObjectsAndArrays) {
    const std::vector<int> numbers{1, 2};
    EXPECT_EQ(JsonRow()
                  .object("o", [](JsonRow& row) { row.integer("a", 1).null("b"); })
                  .objects("l", numbers,
                           [](JsonRow& row, int number) { row.integer("n", number).null("x"); })
                  .texts("t", std::vector<std::string>{"p", "q"})
                  .null("e")
                  .object("last", [](JsonRow&) {})
                  .line(),
              "{\"o\":{\"a\":1,\"b\":null},\"l\":[{\"n\":1,\"x\":null},{\"n\":2,\"x\":null}],"
              "\"t\":[\"p\",\"q\"],\"e\":null,\"last\":{}}\n");
}

TEST(JsonRow, WritesEmptyListsInBothForms) {
    const std::vector<std::string> none;
    EXPECT_EQ(JsonRow().texts("t", none).objects("o", none, [](JsonRow&, auto&) {}).line(),
              "{\"t\":[],\"o\":[]}\n");
}

TEST(JsonRow, EscapesTextsAndNames) {
    EXPECT_EQ(JsonRow().text("a\"b", "c\\d\n").line(), "{\"a\\\"b\":\"c\\\\d\\n\"}\n");
}

TEST(JsonRow, ReplacesWhatIsNotText) {
    EXPECT_EQ(JsonRow().text("a", "x\xFF").line(), "{\"a\":\"x\uFFFD\"}\n");
}

TEST(JsonRow, WritesWhatIsNotFiniteAsNull) {
    EXPECT_EQ(JsonRow()
                  .number("a", std::numeric_limits<double>::infinity())
                  .number("b", std::numeric_limits<double>::quiet_NaN())
                  .line(),
              "{\"a\":null,\"b\":null}\n");
}

TEST(JsonRow, OutgrowsTheBufferOfTheWriter) {
    const std::string longText(200'000, 'x');
    EXPECT_EQ(JsonRow().null("a").text("b", longText).null("c").line(),
              "{\"a\":null,\"b\":\"" + longText + "\",\"c\":null}\n");
}

}  // namespace trellant::testing
