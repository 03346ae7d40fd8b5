// Columns for people: alignment, wide characters, narrow and wide terminals.
#include "table.h"

#include "console.h"

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

TEST(AlignedTableDeathTest, RefusesRowsOfOtherLengths) {
    const Table table{.columns = {{.title = "A"}}, .rows = {{"1", "2"}}};
    EXPECT_DEATH(static_cast<void>(aligned(table, 80, false)),
                 "precondition failed: a row has a cell for each column");
    EXPECT_DEATH(static_cast<void>(cli::csv(table)),
                 "precondition failed: a row has a cell for each column");
}

}  // namespace trellant::testing
