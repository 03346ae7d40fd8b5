// SPDX-License-Identifier: Apache-2.0
#include "terminal/pasted_word.h"

#include <gtest/gtest.h>

namespace trellant::cli {
namespace {

TEST(PastedFileName, LeavesPlainNamesAsTheyAre) {
    EXPECT_EQ(pastedFileName("mix/session_1.omf"), "mix/session_1.omf");
}

TEST(PastedFileName, QuotesWhatAShellWouldTakeApart) {
    EXPECT_EQ(pastedFileName("my mix.omf"), "'my mix.omf'");
    EXPECT_EQ(pastedFileName("$(reboot).omf"), "'$(reboot).omf'");
    EXPECT_EQ(pastedFileName("Anna's \"mix\".omf"), "'Anna'\\''s \"mix\".omf'");
    EXPECT_EQ(pastedFileName("~.omf"), "'~.omf'");
    EXPECT_EQ(pastedFileName(""), "''");
}

TEST(PastedFileName, IsNeverAnOption) {
    EXPECT_EQ(pastedFileName("-rf"), "./-rf");
    EXPECT_EQ(pastedFileName("- x"), "'./- x'");
}

}  // namespace
}  // namespace trellant::cli
