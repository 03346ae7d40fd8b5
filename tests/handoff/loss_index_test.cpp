// SPDX-License-Identifier: Apache-2.0
#include <trellant/handoff/loss_index.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace trellant {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

PlacedLoss loss(const std::string& track, int start, int duration) {
    return {.trackID = track, .start = AAFRational(start), .duration = AAFRational(duration)};
}

AAFClipEvent clip(const std::string& track, int start, int duration) {
    return {
        .trackID = track, .timelineStart = AAFRational(start), .duration = AAFRational(duration)};
}

TEST(LossIndex, LossesTouchTheClipsWhoseTimeTheyShare) {
    const std::vector<PlacedLoss> losses{loss("a", 10, 5), loss("a", 0, 4), loss("b", 10, 5)};
    const LossIndex index(losses);
    EXPECT_THAT(index.touching(clip("a", 12, 10)), ElementsAre(0));
    EXPECT_THAT(index.touching(clip("a", 3, 8)), ElementsAre(0, 1));
    EXPECT_THAT(index.touching(clip("b", 0, 100)), ElementsAre(2));
}

TEST(LossIndex, NeighboursThatOnlyMeetALossAreNotTouched) {
    const std::vector<PlacedLoss> losses{loss("a", 10, 5)};
    const LossIndex index(losses);
    EXPECT_THAT(index.touching(clip("a", 5, 5)), IsEmpty());
    EXPECT_THAT(index.touching(clip("a", 15, 5)), IsEmpty());
}

TEST(LossIndex, ACutTouchesTheClipsOnBothSides) {
    const std::vector<PlacedLoss> losses{loss("a", 10, 0)};
    const LossIndex index(losses);
    EXPECT_THAT(index.touching(clip("a", 5, 5)), ElementsAre(0));
    EXPECT_THAT(index.touching(clip("a", 10, 5)), ElementsAre(0));
    EXPECT_THAT(index.touching(clip("a", 11, 5)), IsEmpty());
}

TEST(LossIndex, ALongLossIsFoundBehindShortOnes) {
    const std::vector<PlacedLoss> losses{loss("a", 0, 100), loss("a", 1, 1), loss("a", 2, 1)};
    const LossIndex index(losses);
    EXPECT_THAT(index.touching(clip("a", 50, 1)), ElementsAre(0));
}

TEST(LossIndex, LossesWithoutTrackOrTimeTouchNoClip) {
    const std::vector<PlacedLoss> losses{
        PlacedLoss{}, {.trackID = "a"}, {.start = AAFRational(0), .duration = AAFRational(9)}};
    EXPECT_THAT(LossIndex(losses).touching(clip("a", 0, 9)), IsEmpty());
}

TEST(LossIndex, CountsAllAndNamesTheFirst) {
    // 40 losses over the whole clip, in the order of their starts: 16 are named.
    std::vector<PlacedLoss> losses;
    for (int i = 0; i < 40; ++i) {
        losses.push_back(loss("a", i, 100));
    }
    const LossIndex index(losses);
    EXPECT_EQ(index.countTouching(clip("a", 50, 60)), 40U);
    EXPECT_THAT(index.touching(clip("a", 50, 60)),
                ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
}

TEST(LossIndex, TheCountIsThatOfThePositions) {
    const std::vector<PlacedLoss> losses{loss("a", 0, 1), loss("a", 1, 0), loss("a", 1, 2),
                                         loss("a", 2, 0), loss("a", 3, 1), loss("b", 0, 9)};
    const LossIndex index(losses);
    for (int start = 0; start < 5; ++start) {
        for (int end = start + 1; end < 6; ++end) {
            const AAFClipEvent event = clip("a", start, end - start);
            EXPECT_EQ(index.countTouching(event), index.touching(event).size()) << start << end;
        }
    }
    // Cuts at 1 and 2 touch on both sides; the losses 0-1 and 3-4 only meet the clip.
    EXPECT_THAT(index.touching(clip("a", 1, 2)), ElementsAre(1, 2, 3));
}

}  // namespace
}  // namespace trellant
