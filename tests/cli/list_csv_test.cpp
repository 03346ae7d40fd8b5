// SPDX-License-Identifier: Apache-2.0
// Records for sheets: quotes, and cells that must not become formulas.
#include "cell_list.h"

#include <gtest/gtest.h>

namespace trellant::testing {

namespace {

/// The one record that holds the cell, beside another.
std::string record(SaidCell cell) {
    const std::string csv =
        csvOf(CellList({{"a", "A"}, {"b", "B"}}, {{std::move(cell), text("b")}}));
    EXPECT_EQ(csv.substr(0, 5), "A,B\r\n");
    return csv.substr(5);
}

std::string record(const char* cell) {
    return record(text(cell));
}

}  // namespace

TEST(CsvTable, PutsTitlesFirstAndEndsEachRecord) {
    EXPECT_EQ(csvOf(CellList({{"track", "Track"}, {"clip", "Clip"}},
                             {{integer(1), text("Anna")}, {integer(2), nothing()}})),
              "Track,Clip\r\n1,Anna\r\n2,\r\n");
}

TEST(CsvTable, WordsAreAsTheyAre) {
    EXPECT_EQ(record(word("01:00:00;02")), "01:00:00;02,b\r\n");
    EXPECT_EQ(record(word("L50")), "L50,b\r\n");
}

TEST(CsvTable, WithoutRowsIsTheTitles) {
    EXPECT_EQ(csvOf(CellList({{"a", "A"}, {"b", "B"}}, {})), "A,B\r\n");
}

TEST(CsvTable, HoldsNothingThatOnlyPeopleSee) {
    EXPECT_EQ(csvOf(CellList(
                  {{"", "Short", cli::Audience::people}, {"a", "Whole", cli::Audience::machines}},
                  {{text("s"), text("whole")}})),
              "Whole\r\nwhole\r\n");
}

TEST(CsvTable, TellsFractionsInTwoColumns) {
    const cli::Column exact{"exact", "Exact", cli::Audience::details, cli::Align::left, false,
                            0,       true};
    EXPECT_EQ(csvOf(CellList({exact, {"b", "B"}}, {{fraction(AAFRational(-1, 2)), boolean(true)},
                                                   {fraction(AAFRational(3)), boolean(false)},
                                                   {nothing(), boolean(true)}})),
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
    EXPECT_EQ(csvOf(CellList({{"a", "A"}}, {{nothing()}, {text("x")}})), "A\r\n\"\"\r\nx\r\n");
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
    EXPECT_EQ(record(integer(-3)), "-3,b\r\n");
    EXPECT_EQ(record(number(-1.5)), "-1.5,b\r\n");
    // 20 * log10(0.5) = -6.0206
    EXPECT_EQ(record(decibels(0.5)), "-6.02,b\r\n");
}

TEST(CsvTable, GuardsGainsThatAreNoNumbers) {
    EXPECT_EQ(record(decibels(0)), "'-inf,b\r\n");
    EXPECT_EQ(record(decibels(-0.5)), "'-6.02 inverted,b\r\n");
}

TEST(CsvTable, ReplacesControlCharactersOtherThanTabAndLineFeed) {
    EXPECT_EQ(record("a\x1b[1mb\rc\x7f"), "a\uFFFD[1mb\uFFFDc\uFFFD,b\r\n");
    EXPECT_EQ(record("a\xC2\x9B"
                     "b\xC2\xA0"),
              "a\uFFFDb\u00A0,b\r\n");
    EXPECT_EQ(record("a\tb"), "a\tb,b\r\n");
}

TEST(CsvTable, GuardsTitlesToo) {
    EXPECT_EQ(csvOf(CellList({{"a", "=A"}}, {})), "'=A\r\n");
}

TEST(CsvTable, ReplacesWhatIsNotText) {
    EXPECT_EQ(record("a\xFF"), "a\uFFFD,b\r\n");
}

TEST(CsvTable, GuardsFormulasBehindOtherSeparators) {
    // A sheet that is set to ";" does not see the quotes around the cell, and begins one there.
    EXPECT_EQ(record("a;=1+1"), "a;'=1+1,b\r\n");
    EXPECT_EQ(record("a;\"=1+1\""), "\"a;'\"\"=1+1\"\"\",b\r\n");
    EXPECT_EQ(record("a\t@SUM"), "a\t'@SUM,b\r\n");
    EXPECT_EQ(record("a\n-A1"), "\"a\n'-A1\",b\r\n");
    EXPECT_EQ(record("\"=1\""), "\"'\"\"=1\"\"\",b\r\n");
    EXPECT_EQ(record("a; b"), "a; b,b\r\n");
    EXPECT_EQ(record("a, -3"), "\"a, -3\",b\r\n");
}

TEST(CsvTable, NamesTheFileOfEachRecordWhereThereAreSeveral) {
    const CellList list({{"a", "A"}}, {{integer(1)}, {nothing()}});
    StringSink sink;
    cli::CsvWriter csv(sink, true);
    csv.titles(list);
    csv.records("one.omf", list);
    csv.records("=two.omf", list);
    EXPECT_EQ(sink.text, "File,A\r\none.omf,1\r\none.omf,\r\n'=two.omf,1\r\n'=two.omf,\r\n");
}

}  // namespace trellant::testing
