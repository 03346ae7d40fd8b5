// SPDX-License-Identifier: Apache-2.0
#include "terminal/bar_line.h"

#include "terminal/table.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace trellant::testing {

using cli::barLine;

TEST(BarLine, ShowsLabelBarAndPercent) {
    EXPECT_EQ(barLine(0.5, "Reading", 80),
              "Reading  [" + std::string(20, '=') + ">" + std::string(19, ' ') + "]  50%");
}

TEST(BarLine, IsFullAtTheEnd) {
    EXPECT_EQ(barLine(1.0, "Reading", 80), "Reading  [" + std::string(40, '=') + "] 100%");
}

TEST(BarLine, FillsANarrowTerminalButOneCell) {
    EXPECT_EQ(barLine(0.5, "Reading", 24), "Rea\u2026  [=====>    ]  50%");
    EXPECT_EQ(cli::displayWidth(barLine(0.5, "Reading", 24)), 23U);
}

TEST(BarLine, ShowsOnlyTheNumberWhereNothingElseFits) {
    EXPECT_EQ(barLine(0.5, "Reading", 23), " 50%");
    EXPECT_EQ(barLine(0.5, "Reading", 0), " 50%");
}

TEST(BarLine, NeedsNoLabel) {
    EXPECT_EQ(barLine(0.0, "", 24), "[>               ]   0%");
}

TEST(BarLine, TakesFractionsOutsideForTheNearerEnd) {
    EXPECT_EQ(barLine(7.0, "a", 23), "100%");
    EXPECT_EQ(barLine(std::numeric_limits<double>::infinity(), "a", 23), "100%");
    EXPECT_EQ(barLine(-1.0, "a", 23), "  0%");
    EXPECT_EQ(barLine(std::numeric_limits<double>::quiet_NaN(), "a", 23), "  0%");
}

TEST(BarLine, ShowsALabelOfStrangersHarmlessly) {
    EXPECT_EQ(barLine(1.0, "a\nb", 24), "a\uFFFDb  [===========] 100%");
}

TEST(BarLine, KeepsToEveryWidth) {
    for (std::size_t columns = 24; columns <= 200; ++columns) {
        EXPECT_LT(
            cli::displayWidth(barLine(0.3, "A label that is rather long \u96e8\u96e8", columns)),
            columns);
    }
}

}  // namespace trellant::testing
