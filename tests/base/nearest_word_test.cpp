// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/nearest_word.h>

#include <gtest/gtest.h>

namespace trellant {
namespace {

const std::vector<std::string> words{"info", "list", "extract", "dump"};

TEST(NearestWord, TakesTheFewestChanges) {
    // One letter left out, added, changed, and two exchanged: one step each.
    EXPECT_EQ(nearestWord("exract", words), "extract");
    EXPECT_EQ(nearestWord("dumpp", words), "dump");
    EXPECT_EQ(nearestWord("lint", words), "list");
    EXPECT_EQ(nearestWord("nifo", words), "info");
}

TEST(NearestWord, IsAbsentWhereMoreThanAThirdIsOther) {
    EXPECT_EQ(nearestWord("lsts", {"list"}), std::nullopt);
    EXPECT_EQ(nearestWord("play", words), std::nullopt);
    EXPECT_EQ(nearestWord("", words), std::nullopt);
    EXPECT_EQ(nearestWord("list", {}), std::nullopt);
}

TEST(NearestWord, DoesNotLookAtEndlessWords) {
    EXPECT_EQ(nearestWord(std::string(65, 'a'), {std::string(65, 'a')}), std::nullopt);
}

}  // namespace
}  // namespace trellant
