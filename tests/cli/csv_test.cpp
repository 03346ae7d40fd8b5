// SPDX-License-Identifier: Apache-2.0
// Records for sheets: quotes, and cells that must not become formulas.
#include "look/listing.h"

#include <gtest/gtest.h>

namespace trellant::testing {

namespace {

/// The one record that holds the cell, beside another.
std::string record(const cli::Value& cell) {
    const std::string text =
        cli::csv({.fields = {{"a", "A"}, {"b", "B"}}, .rows = {{cell, std::string("b")}}});
    EXPECT_EQ(text.substr(0, 5), "A,B\r\n");
    return text.substr(5);
}

std::string record(const char* cell) {
    return record(cli::Value(std::string(cell)));
}

}  // namespace

TEST(CsvTable, PutsTitlesFirstAndEndsEachRecord) {
    EXPECT_EQ(cli::csv({.fields = {{"track", "Track"}, {"clip", "Clip"}},
                        .rows = {{std::int64_t{1}, std::string("Anna")},
                                 {std::int64_t{2}, cli::Value()}}}),
              "Track,Clip\r\n1,Anna\r\n2,\r\n");
}

TEST(CsvTable, WithoutRowsIsTheTitles) {
    EXPECT_EQ(cli::csv({.fields = {{"a", "A"}, {"b", "B"}}, .rows = {}}), "A,B\r\n");
}

TEST(CsvTable, HoldsNothingThatOnlyPeopleSee) {
    EXPECT_EQ(cli::csv({.fields = {{"", "Short", cli::Audience::people},
                                   {"a", "Whole", cli::Audience::machines}},
                        .rows = {{std::string("s"), std::string("whole")}}}),
              "Whole\r\nwhole\r\n");
}

TEST(CsvTable, TellsFractionsInTwoColumns) {
    const cli::Field exact{"exact", "Exact", cli::Audience::details, cli::Align::left, false,
                           0,       true};
    EXPECT_EQ(cli::csv({.fields = {exact, {"b", "B"}},
                        .rows = {{cli::Fraction{AAFRational(-1, 2)}, true},
                                 {cli::Fraction{AAFRational(3)}, false},
                                 {cli::Value(), true}}}),
              "Exact numerator,Exact denominator,B\r\n-1,2,yes\r\n3,1,no\r\n,,yes\r\n");
}

TEST(CsvTable, QuotesCommasQuotesAndLineEnds) {
    EXPECT_EQ(record("a,b"), "\"a,b\",b\r\n");
    EXPECT_EQ(record("say \"hi\""), "\"say \"\"hi\"\"\",b\r\n");
    EXPECT_EQ(record("a\nb"), "\"a\nb\",b\r\n");
    EXPECT_EQ(record("\""), "\"\"\"\",b\r\n");
}

TEST(CsvTable, LeavesOtherCellsAsTheyAre) {
    EXPECT_EQ(record(" a b; "), " a b; ,b\r\n");
    EXPECT_EQ(record("\u96e8"), "\u96e8,b\r\n");
    EXPECT_EQ(record("a=b"), "a=b,b\r\n");
}

TEST(CsvTable, QuotesALoneEmptyCell) {
    EXPECT_EQ(cli::csv({.fields = {{"a", "A"}}, .rows = {{cli::Value()}, {std::string("x")}}}),
              "A\r\n\"\"\r\nx\r\n");
}

TEST(CsvTable, GuardsWhatASheetTakesForAFormula) {
    EXPECT_EQ(record("=1+1"), "'=1+1,b\r\n");
    EXPECT_EQ(record("=HYPERLINK(\"x\")"), "\"'=HYPERLINK(\"\"x\"\")\",b\r\n");
    EXPECT_EQ(record("@SUM"), "'@SUM,b\r\n");
    EXPECT_EQ(record("\tx"), "'\tx,b\r\n");
    EXPECT_EQ(record("+A1"), "'+A1,b\r\n");
    EXPECT_EQ(record("-A1"), "'-A1,b\r\n");
    EXPECT_EQ(record("-"), "'-,b\r\n");
    EXPECT_EQ(record("=5"), "'=5,b\r\n");
}

TEST(CsvTable, GuardsArithmeticOfNumbers) {
    for (const char* cell : {"-1/2", "+1-1", "-6.02 dB", "-1.", "-.5", "-1e", "-1e5x", "--1"}) {
        EXPECT_EQ(record(cell), "'" + std::string(cell) + ",b\r\n");
    }
}

TEST(CsvTable, GuardsTextsThatLookLikeNumbers) {
    EXPECT_EQ(record("-3"), "'-3,b\r\n");
    EXPECT_EQ(record("+49170"), "'+49170,b\r\n");
}

TEST(CsvTable, LeavesNumbersNumbers) {
    EXPECT_EQ(record(cli::Value(std::int64_t{-3})), "-3,b\r\n");
    EXPECT_EQ(record(cli::Value(-1.5)), "-1.5,b\r\n");
    // 20 * log10(0.5) = -6.0206
    EXPECT_EQ(record(cli::Value(cli::Gain{0.5})), "-6.02,b\r\n");
}

TEST(CsvTable, GuardsGainsThatAreNoNumbers) {
    EXPECT_EQ(record(cli::Value(cli::Gain{0})), "'-inf,b\r\n");
    EXPECT_EQ(record(cli::Value(cli::Gain{-0.5})), "'-6.02 inverted,b\r\n");
}

TEST(CsvTable, ReplacesControlCharactersOtherThanTabAndLineFeed) {
    EXPECT_EQ(record("a\x1b[1mb\rc\x7f"), "a\uFFFD[1mb\uFFFDc\uFFFD,b\r\n");
    EXPECT_EQ(record("a\xC2\x9B"
                     "b\xC2\xA0"),
              "a\uFFFDb\u00A0,b\r\n");
    EXPECT_EQ(record("a\tb"), "a\tb,b\r\n");
}

TEST(CsvTable, GuardsTitlesToo) {
    EXPECT_EQ(cli::csv({.fields = {{"a", "=A"}}, .rows = {}}), "'=A\r\n");
}

TEST(CsvTable, ReplacesWhatIsNotText) {
    EXPECT_EQ(record("a\xFF"), "a\uFFFD,b\r\n");
}

TEST(CsvTableDeathTest, RefusesRowsOfOtherLengths) {
    EXPECT_DEATH(static_cast<void>(cli::csv({.fields = {{"a", "A"}}, .rows = {{true, false}}})),
                 "precondition failed: a row has a value for each field");
}

}  // namespace trellant::testing
