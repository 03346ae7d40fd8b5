// SPDX-License-Identifier: Apache-2.0
// Columns for people: alignment, wide characters, narrow and wide terminals.
#include "terminal/table.h"

#include "terminal/console.h"

#include <gtest/gtest.h>

namespace trellant::testing {

namespace {

using cli::Align;
using cli::aligned;
using cli::Console;
using cli::Table;

Table clips() {
    return {.columns = {{.title = "Track"},
                        {.title = "Clip", .mayShrink = true},
                        {.title = "Gain", .align = Align::right}},
            .rows = {{"1", "Anna take 1", "-6.02"}, {"12", "\u96e8", "0"}}};
}

/// Two columns that may be cut, of 50 and 40 cells.
Table longNames() {
    return {.columns = {{.title = "Name", .mayShrink = true}, {.title = "File", .mayShrink = true}},
            .rows = {{std::string(50, 'n'), std::string(40, 'f')}}};
}

}  // namespace

TEST(AlignedTable, PutsTitlesFirstAndTwoBlanksBetween) {
    EXPECT_EQ(aligned(clips(), Console::unlimitedColumns, false),
              "Track  Clip          Gain\n"
              "1      Anna take 1  -6.02\n"
              "12     \u96e8               0\n");
}

TEST(AlignedTable, EndsNoLineWithBlanks) {
    const Table table{.columns = {{.title = "A"}, {.title = "Long title"}},
                      .rows = {{"1", ""}, {"", ""}, {"2", "b "}}};
    EXPECT_EQ(aligned(table, Console::unlimitedColumns, false), "A  Long title\n1\n\n2  b\n");
}

TEST(AlignedTable, PaintsTheTitlesOnly) {
    const Table table{.columns = {{.title = "A"}, {.title = "B"}}, .rows = {{"1", "2"}}};
    EXPECT_EQ(aligned(table, 80, true), "\x1b[1mA  B\x1b[0m\n1  2\n");
}

TEST(AlignedTable, CutsNothingWhereAllFits) {
    EXPECT_EQ(aligned(longNames(), 200, false), "Name" + std::string(48, ' ') + "File\n" +
                                                    std::string(50, 'n') + "  " +
                                                    std::string(40, 'f') + "\n");
    EXPECT_EQ(aligned(longNames(), 92, false), aligned(longNames(), 200, false));
}

TEST(AlignedTable, CutsTheWidestColumnFirst) {
    EXPECT_EQ(aligned(longNames(), 87, false), "Name" + std::string(43, ' ') + "File\n" +
                                                   std::string(44, 'n') + "\u2026  " +
                                                   std::string(40, 'f') + "\n");
}

TEST(AlignedTable, SharesANarrowTerminalAmongColumns) {
    EXPECT_EQ(aligned(longNames(), 60, false), "Name" + std::string(27, ' ') + "File\n" +
                                                   std::string(28, 'n') + "\u2026  " +
                                                   std::string(28, 'f') + "\u2026\n");
}

TEST(AlignedTable, CutsTitlesToo) {
    const Table table{.columns = {{.title = "Long title", .mayShrink = true}, {.title = "B"}},
                      .rows = {{"a", "b"}}};
    EXPECT_EQ(aligned(table, 9, false), "Long \u2026  B\na       b\n");
}

TEST(AlignedTable, LetsTheLineGrowWhenNothingMayBeCut) {
    EXPECT_EQ(aligned(clips(), 1, false),
              "Track  Clip   Gain\n"
              "1      Ann\u2026  -6.02\n"
              "12     \u96e8        0\n");
}

TEST(AlignedTable, CutsWideCharactersWithoutLosingTheColumns) {
    const Table table{.columns = {{.title = "N", .mayShrink = true}, {.title = "B"}},
                      .rows = {{"\u96e8\u96e8\u96e8\u96e8", "b"}}};
    EXPECT_EQ(aligned(table, 9, false), "N       B\n\u96e8\u96e8\u2026   b\n");
}

TEST(AlignedTable, ReplacesWhatWouldLeaveTheCell) {
    const Table table{.columns = {{.title = "A"}, {.title = "B"}}, .rows = {{"a\nb\x1b", "c"}}};
    EXPECT_EQ(aligned(table, 80, false), "A     B\na\uFFFDb\uFFFD  c\n");
}

TEST(AlignedTable, CutsVeryLongCells) {
    const Table table{.columns = {{.title = "A", .mayShrink = true}},
                      .rows = {{std::string(5'000'000, 'x')}}};
    EXPECT_EQ(aligned(table, 10, false), "A\nxxxxxxxxx\u2026\n");
}

TEST(AlignedTable, OfNoColumnsIsEmpty) {
    EXPECT_EQ(aligned({}, 80, false), "");
}

namespace {

/// At its readable widths "Clip" takes 8 cells, "Gain" 5 and "Fade" 6.
Table ranked() {
    return {.columns = {{.title = "Clip", .mayShrink = true},
                        {.title = "Fade", .rank = 2},
                        {.title = "Gain", .align = Align::right, .rank = 1}},
            .rows = {{"Anna take 1", "3f lin", "-6.02"}}};
}

}  // namespace

TEST(FittedTable, LeavesNothingOutWhileNamesStayReadable) {
    // 8 + 2 + 6 + 2 + 5
    const cli::FittedTable table = fitted(ranked(), 23, false);
    EXPECT_EQ(table.text, "Clip      Fade     Gain\nAnna ta\u2026  3f lin  -6.02\n");
    EXPECT_TRUE(table.leftOut.empty());
}

TEST(FittedTable, LeavesOutTheLastInRankFirst) {
    const cli::FittedTable table = fitted(ranked(), 22, false);
    EXPECT_EQ(table.text, "Clip          Gain\nAnna take 1  -6.02\n");
    EXPECT_EQ(table.leftOut, std::vector<std::string>{"Fade"});
}

TEST(FittedTable, LeavesOutColumnsOfOneRankTogether) {
    Table table = ranked();
    table.columns[1].rank = 1;
    // Both take 8 cells of the name, 6 and 5 of their own, and twice 2 between.
    EXPECT_TRUE(fitted(table, 23, false).leftOut.empty());
    const cli::FittedTable narrower = fitted(table, 22, false);
    EXPECT_EQ(narrower.text, "Clip\nAnna take 1\n");
    EXPECT_EQ(narrower.leftOut, (std::vector<std::string>{"Fade", "Gain"}));
}

TEST(FittedTable, KeepsWhatHasNoRank) {
    const cli::FittedTable table = fitted(ranked(), 5, false);
    EXPECT_EQ(table.text, "Clip\nAnna\u2026\n");
    EXPECT_EQ(table.leftOut, (std::vector<std::string>{"Fade", "Gain"}));
}

TEST(FittedTable, IsWholeWhereALineHasNoEnd) {
    const cli::FittedTable table = fitted(ranked(), Console::unlimitedColumns, false);
    EXPECT_EQ(table.text, "Clip         Fade     Gain\nAnna take 1  3f lin  -6.02\n");
    EXPECT_TRUE(table.leftOut.empty());
}

TEST(AlignedTableDeathTest, RefusesRowsOfOtherLengths) {
    const Table table{.columns = {{.title = "A"}}, .rows = {{"1", "2"}}};
    EXPECT_DEATH(static_cast<void>(aligned(table, 80, false)),
                 "precondition failed: a row has a cell for each column");
}

TEST(Table, OneLongCellDoesNotMakeAPageOfBlanks) {
    cli::Table table{.columns = {{"Name"}, {"Id"}}, .rows = {}};
    table.rows.push_back({std::string(100'000, 'x'), "1"});
    table.rows.push_back({"y", "2"});
    const std::string text = cli::aligned(table, cli::Console::unlimitedColumns, false);
    // Each line has 200 cells of names at most, two blanks and the id.
    EXPECT_EQ(text, "Name" + std::string(198, ' ') + "Id\n" + std::string(199, 'x') +
                        "\u2026  1\ny" + std::string(201, ' ') + "2\n");
}

}  // namespace trellant::testing
