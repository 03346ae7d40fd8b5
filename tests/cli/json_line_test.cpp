// SPDX-License-Identifier: Apache-2.0
// Lines of JSON, written member by member.
#include "terminal/json_line.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace trellant::testing {

using cli::JsonLine;
using cli::jsonLine;

TEST(JsonLine, WithoutMembersIsAnEmptyObject) {
    EXPECT_EQ(jsonLine([](JsonLine&) {}), "{}\n");
}

TEST(JsonLine, KeepsTheOrderInWhichMembersAreNamed) {
    EXPECT_EQ(jsonLine([](JsonLine& line) {
                  line.text("z", "Anna")
                      .integer("a", -7)
                      .number("m", 0.5)
                      .boolean("b", true)
                      .boolean("c", false)
                      .count("n", 3);
              }),
              "{\"z\":\"Anna\",\"a\":-7,\"m\":0.5,\"b\":true,\"c\":false,\"n\":3}\n");
}

TEST(JsonLine, WordsAreTexts) {
    EXPECT_EQ(jsonLine([](JsonLine& line) { line.word("in", "01:00:00;02").word("state", ""); }),
              "{\"in\":\"01:00:00;02\",\"state\":\"\"}\n");
}

TEST(JsonLine, AnotherLineBeginsBehindOneThatHasEnded) {
    StringSink sink;
    JsonLine line(sink);
    line.integer("a", 1);
    line.end();
    line.begin();
    line.integer("b", 2);
    line.end();
    EXPECT_EQ(sink.text, "{\"a\":1}\n{\"b\":2}\n");
}

TEST(JsonLine, CountsReachBeyondSignedNumbers) {
    EXPECT_EQ(jsonLine([](JsonLine& line) {
                  line.count("n", std::numeric_limits<std::uint64_t>::max()).count("z", 0);
              }),
              "{\"n\":18446744073709551615,\"z\":0}\n");
}

TEST(JsonLine, LeavesOutWhatIsAbsent) {
    EXPECT_EQ(jsonLine([](JsonLine& line) {
                  line.text("t", std::optional<std::string>())
                      .integer("i", std::optional<std::int64_t>())
                      .number("n", std::optional<double>())
                      .fraction("f", std::optional<AAFRational>())
                      .boolean("b", true);
              }),
              "{\"b\":true}\n");
}

TEST(JsonLine, WritesPresentValuesOfOptionals) {
    EXPECT_EQ(jsonLine([](JsonLine& line) {
                  line.text("t", std::optional<std::string>("x"))
                      .integer("i", std::optional<std::int64_t>(1))
                      .number("n", std::optional<double>(2.5))
                      .fraction("f", std::optional(AAFRational(7, 2)))
                      .text("s", std::string("y"));
              }),
              "{\"t\":\"x\",\"i\":1,\"n\":2.5,\"f\":\"7\\/2\",\"s\":\"y\"}\n");
}

TEST(JsonLine, WritesFractionsOfEverySize) {
    constexpr auto least = std::numeric_limits<std::int64_t>::min() + 1;
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(jsonLine([](JsonLine& line) {
                  line.fraction("a", AAFRational(least, most - 1)).fraction("b", AAFRational(3));
              }),
              "{\"a\":\"-9223372036854775807\\/9223372036854775806\",\"b\":\"3\"}\n");
}

TEST(JsonLine, NestsObjectsAndArrays) {
    const std::vector<int> numbers{1, 2};
    EXPECT_EQ(jsonLine([&numbers](JsonLine& line) {
                  line.object("o", [](JsonLine& inner) { inner.integer("a", 1); })
                      .objects("l", numbers,
                               [](JsonLine& inner, int number) { inner.integer("n", number); })
                      .texts("t", std::vector<std::string>{"p", "q"})
                      .integers("i", numbers)
                      .object("last", [](JsonLine&) {});
              }),
              "{\"o\":{\"a\":1},\"l\":[{\"n\":1},{\"n\":2}],\"t\":[\"p\",\"q\"],\"i\":[1,2],"
              "\"last\":{}}\n");
}

TEST(JsonLine, WritesEmptyLists) {
    const std::vector<std::string> none;
    EXPECT_EQ(jsonLine([&none](JsonLine& line) {
                  line.texts("t", none).objects("o", none, [](JsonLine&, auto&) {});
              }),
              "{\"t\":[],\"o\":[]}\n");
}

TEST(JsonLine, EscapesTexts) {
    EXPECT_EQ(jsonLine([](JsonLine& line) { line.text("a", "c\\d\n\"e\""); }),
              "{\"a\":\"c\\\\d\\n\\\"e\\\"\"}\n");
}

TEST(JsonLine, ReplacesWhatIsNotText) {
    EXPECT_EQ(jsonLine([](JsonLine& line) { line.text("a", "x\xFF"); }), "{\"a\":\"x\\ufffd\"}\n");
}

TEST(JsonLine, EscapesWhatATerminalWouldObey) {
    EXPECT_EQ(jsonLine([](JsonLine& line) { line.text("a", "x\u009bK\u00e4"); }),
              "{\"a\":\"x\\u009bK\\u00e4\"}\n");
}

TEST(JsonLine, LeavesOutWhatIsNotFinite) {
    EXPECT_EQ(jsonLine([](JsonLine& line) {
                  line.number("a", std::numeric_limits<double>::infinity())
                      .number("b", std::numeric_limits<double>::quiet_NaN());
              }),
              "{}\n");
}

TEST(JsonLine, OutgrowsTheBufferOfTheWriter) {
    const std::string longText(200'000, 'x');
    EXPECT_EQ(jsonLine([&longText](JsonLine& line) { line.text("b", longText).integer("c", 1); }),
              "{\"b\":\"" + longText + "\",\"c\":1}\n");
}

TEST(JsonLine, SeveralLinesGoIntoOneSink) {
    StringSink sink;
    JsonLine(sink).integer("a", 1).end();
    JsonLine(sink).integer("a", 2).end();
    EXPECT_EQ(sink.text, "{\"a\":1}\n{\"a\":2}\n");
}

}  // namespace trellant::testing
