// SPDX-License-Identifier: Apache-2.0
#include <trellant/model/timecode_label.h>

#include <gtest/gtest.h>

namespace trellant {
namespace {

TEST(TimecodeText, HasFourPairsOfDigitsInRange) {
    for (const char* const text : {"00:00:00:00", "23:59:59:29", "01:00:00;02"}) {
        EXPECT_TRUE(isTimecodeText(text)) << text;
    }
    for (const char* const text :
         {"", "1:00:00:00", "24:00:00:00", "00:60:00:00", "00:00:60:00", "00;00:00:00",
          "00:00:00.00", "0a:00:00:00", "00:00:00:000", "-1:00:00:00"}) {
        EXPECT_FALSE(isTimecodeText(text)) << text;
    }
}

TEST(TimecodeText, IsAFrameOfTheRate) {
    // An hour has 3,600 seconds of 25 frames.
    EXPECT_EQ(frameOfLabel("01:00:00:01", AAFTimecodeRate::fps25()), 90'001);
    EXPECT_EQ(frameOfLabel("01:00:00:25", AAFTimecodeRate::fps25()), std::nullopt);
    EXPECT_EQ(frameOfLabel("nonsense", AAFTimecodeRate::fps25()), std::nullopt);
    // Drop-frame leaves out two labels a minute but each tenth: the second minute begins with ;02,
    // which is frame 1,800.
    EXPECT_EQ(frameOfLabel("00:01:00;02", AAFTimecodeRate::fps2997DF()), 1'800);
    EXPECT_EQ(frameOfLabel("00:01:00;01", AAFTimecodeRate::fps2997DF()), std::nullopt);
}

}  // namespace
}  // namespace trellant
