// SPDX-License-Identifier: Apache-2.0
#include "name_pattern.h"

#include <gtest/gtest.h>

#include <string>

namespace trellant::check {
namespace {

TEST(NamePattern, IsTheWholeName) {
    EXPECT_TRUE(fitsPattern("Dialog", "Dialog"));
    EXPECT_FALSE(fitsPattern("Dialog", "Dia"));
    EXPECT_FALSE(fitsPattern("Dialog", "dialog"));
    EXPECT_TRUE(fitsPattern("", ""));
    EXPECT_FALSE(fitsPattern("a", ""));
}

TEST(NamePattern, StarsStandForAnyCharactersAndNone) {
    EXPECT_TRUE(fitsPattern("Dialog", "Dia*"));
    EXPECT_TRUE(fitsPattern("Dialog", "*log"));
    EXPECT_TRUE(fitsPattern("Dialog", "D*a*g"));
    EXPECT_TRUE(fitsPattern("Dialog", "**Dialog**"));
    EXPECT_TRUE(fitsPattern("", "*"));
    EXPECT_FALSE(fitsPattern("Dialog", "D*x*g"));
    // The first place that fits is not the right one.
    EXPECT_TRUE(fitsPattern("abcabd", "*abd"));
}

TEST(NamePattern, QuestionMarksStandForOneCharacterOfAnySize) {
    EXPECT_TRUE(fitsPattern("Caf\xC3\xA9", "Caf?"));
    EXPECT_FALSE(fitsPattern("Caf\xC3\xA9", "Caf??"));
    EXPECT_FALSE(fitsPattern("Caf", "Caf?"));
}

TEST(NamePattern, LongNamesFitNothingButAStar) {
    const std::string longest(longestComparedName, 'a');
    EXPECT_TRUE(fitsPattern(longest, "a*"));
    EXPECT_FALSE(fitsPattern(longest + "a", "a*"));
    EXPECT_TRUE(fitsPattern(longest + "a", "*"));
}

}  // namespace
}  // namespace trellant::check
