// Records for sheets: quotes, and cells that must not become formulas.
#include "table.h"

#include <gtest/gtest.h>

namespace trellant::testing {

namespace {

/// The one record that holds the cell, beside another.
std::string record(const std::string& cell) {
    const std::string text =
        cli::csv({.columns = {{.title = "A"}, {.title = "B"}}, .rows = {{cell, "b"}}});
    EXPECT_EQ(text.substr(0, 5), "A,B\r\n");
    return text.substr(5);
}

}  // namespace

TEST(CsvTable, PutsTitlesFirstAndEndsEachRecord) {
    EXPECT_EQ(cli::csv({.columns = {{.title = "Track"}, {.title = "Clip"}},
                        .rows = {{"1", "Anna"}, {"2", ""}}}),
              "Track,Clip\r\n1,Anna\r\n2,\r\n");
}

TEST(CsvTable, WithoutRowsIsTheTitles) {
    EXPECT_EQ(cli::csv({.columns = {{.title = "A"}, {.title = "B"}}, .rows = {}}), "A,B\r\n");
}

TEST(CsvTable, QuotesCommasQuotesAndLineEnds) {
    EXPECT_EQ(record("a,b"), "\"a,b\",b\r\n");
    EXPECT_EQ(record("say \"hi\""), "\"say \"\"hi\"\"\",b\r\n");
    EXPECT_EQ(record("a\nb"), "\"a\nb\",b\r\n");
    EXPECT_EQ(record("a\rb"), "\"a\rb\",b\r\n");
    EXPECT_EQ(record("\""), "\"\"\"\",b\r\n");
}

TEST(CsvTable, LeavesOtherCellsAsTheyAre) {
    EXPECT_EQ(record(" a b; "), " a b; ,b\r\n");
    EXPECT_EQ(record("\u96e8"), "\u96e8,b\r\n");
    EXPECT_EQ(record("a=b"), "a=b,b\r\n");
}

TEST(CsvTable, QuotesALoneEmptyCell) {
    EXPECT_EQ(cli::csv({.columns = {{.title = "A"}}, .rows = {{""}, {"x"}}}), "A\r\n\"\"\r\nx\r\n");
}

TEST(CsvTable, GuardsWhatASheetTakesForAFormula) {
    EXPECT_EQ(record("=1+1"), "'=1+1,b\r\n");
    EXPECT_EQ(record("=HYPERLINK(\"x\")"), "\"'=HYPERLINK(\"\"x\"\")\",b\r\n");
    EXPECT_EQ(record("@SUM"), "'@SUM,b\r\n");
    EXPECT_EQ(record("\tx"), "'\tx,b\r\n");
    EXPECT_EQ(record("\rx"), "\"'\rx\",b\r\n");
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

TEST(CsvTable, LeavesPlainNumbersNumbers) {
    for (const char* cell : {"-6.02", "+3", "-0", "-1e-05", "-1.5E+20", "1/2", "7"}) {
        EXPECT_EQ(record(cell), std::string(cell) + ",b\r\n");
    }
}

TEST(CsvTable, GuardsTitlesToo) {
    EXPECT_EQ(cli::csv({.columns = {{.title = "=A"}}, .rows = {}}), "'=A\r\n");
}

TEST(CsvTable, ReplacesWhatIsNotText) {
    EXPECT_EQ(record("a\xFF"), "a\uFFFD,b\r\n");
}

}  // namespace trellant::testing
