// SPDX-License-Identifier: Apache-2.0
// Cells of texts, and texts made harmless.
#include "terminal/shown_text.h"

#include "terminal/console.h"
#include "terminal/table.h"

#include <gtest/gtest.h>

namespace trellant::testing {

using cli::cutToCells;
using cli::displayWidth;
using cli::shownText;

TEST(DisplayWidth, CountsOneCellForEachLetter) {
    EXPECT_EQ(displayWidth(""), 0U);
    EXPECT_EQ(displayWidth("abc"), 3U);
    EXPECT_EQ(displayWidth("\u00e4\u0416"), 2U);
}

TEST(DisplayWidth, CountsTwoCellsForWideCharacters) {
    EXPECT_EQ(displayWidth("\u96e8"), 2U);
    EXPECT_EQ(displayWidth("\uff21"), 2U);
    EXPECT_EQ(displayWidth("\U0001F3B5"), 2U);
}

TEST(DisplayWidth, CountsNothingForCombiningMarks) {
    EXPECT_EQ(displayWidth("e\u0301"), 1U);
    EXPECT_EQ(displayWidth("e\u200d"), 1U);
}

TEST(DisplayWidth, CountsOneCellForWhatIsReplaced) {
    EXPECT_EQ(displayWidth("\n"), 1U);
    EXPECT_EQ(displayWidth("\xFF\xFE"), 2U);
    EXPECT_EQ(displayWidth("\u202e"), 1U);
}

TEST(ShownText, KeepsWhatIsHarmless) {
    EXPECT_EQ(shownText("A b\u0301 \u96e8 \u200d \U0001F3B5"),
              "A b\u0301 \u96e8 \u200d \U0001F3B5");
}

TEST(ShownText, ReplacesControlCharacters) {
    EXPECT_EQ(shownText(std::string("a\0b\tc\x1b"
                                    "d\x7f"
                                    "e\xC2\x85",
                                    11)),
              "a\uFFFDb\uFFFDc\uFFFDd\uFFFDe\uFFFD");
}

TEST(ShownText, ReplacesLineSeparatorsAndTurnsOfDirection) {
    for (const char* harmful : {"\u2028", "\u2029", "\u202a", "\u202e", "\u2066", "\u2069"}) {
        EXPECT_EQ(shownText(harmful), "\uFFFD");
    }
    EXPECT_EQ(shownText("\u202f"), "\u202f");
}

TEST(ShownText, ReplacesEachByteThatIsNotText) {
    EXPECT_EQ(shownText("a\xC3"
                        "b\xE9\xFF"),
              "a\uFFFDb\uFFFD\uFFFD");
}

TEST(CutToCells, LeavesWhatFits) {
    EXPECT_EQ(cutToCells("abc", 3), "abc");
    EXPECT_EQ(cutToCells("", 3), "");
    EXPECT_EQ(cutToCells("\u96e8\u96e8", 4), "\u96e8\u96e8");
}

TEST(CutToCells, EndsWithAnEllipsisWithinTheCells) {
    EXPECT_EQ(cutToCells("abcd", 3), "ab\u2026");
    EXPECT_EQ(cutToCells("abcd", 1), "\u2026");
    EXPECT_EQ(cutToCells("abcd", 0), "");
}

TEST(CutToCells, NeverHalvesAWideCharacter) {
    EXPECT_EQ(cutToCells("\u96e8\u96e8\u96e8", 4), "\u96e8\u2026");
    EXPECT_EQ(cutToCells("\u96e8\u96e8\u96e8", 5), "\u96e8\u96e8\u2026");
}

TEST(CutToCells, KeepsMarksWithTheirLetter) {
    EXPECT_EQ(cutToCells("ae\u0301fg", 3), "ae\u0301\u2026");
    EXPECT_EQ(cutToCells("ae\u0301fg", 2), "a\u2026");
    EXPECT_EQ(cutToCells("abe\u0301", 3), "abe\u0301");
}

TEST(ShownLines, KeepsLineFeedsAndOurColours) {
    const std::string page = cli::painted("head", cli::Paint::bold, true) + "\n" +
                             cli::painted("x", cli::Paint::yellow, true) + " \u00e4\n";
    EXPECT_EQ(cli::shownLines(page), page);
}

TEST(ShownLines, ReplacesWhatATerminalWouldObey) {
    EXPECT_EQ(cli::shownLines("a\x1b[2Jb\x1b[31mc"), "a\uFFFD[2Jb\x1b[31mc");
    EXPECT_EQ(cli::shownLines("\u009bK\u0085\u2028\u202e\r\t"),
              "\uFFFDK\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(cli::shownLines("x\xFF"), "x\uFFFD");
}

TEST(HarmfulText, IsWhatATerminalWouldObey) {
    EXPECT_FALSE(cli::isHarmfulText("plain \u00e4 \u96e8"));
    for (const char* text :
         {"\x1b", "\u009b", "\u0085", "\u202e", "\u2066", "\u2028", "\x7f", "\n"}) {
        EXPECT_TRUE(cli::isHarmfulText(text));
    }
}

}  // namespace trellant::testing
