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

TEST(LossIndex, EveryLossIsFoundThatSharesTime) {
    // Starts and lengths in no order of each other: 7 and 101, 5 and 23 share no factor.
    std::vector<PlacedLoss> losses;
    for (int i = 0; i < 90; ++i) {
        losses.push_back(loss("a", i * 7 % 101, i * 5 % 23));
    }
    const LossIndex index(losses);
    for (int start = 0; start < 130; ++start) {
        const int end = start + 3;
        std::vector<std::size_t> expected;
        for (int i = 0; i < 90; ++i) {
            const int lossStart = i * 7 % 101;
            const int lossEnd = lossStart + i * 5 % 23;
            const bool isCut = lossStart == lossEnd;
            if (isCut ? start <= lossStart && lossStart <= end
                      : lossStart < end && start < lossEnd) {
                expected.push_back(static_cast<std::size_t>(i));
            }
        }
        EXPECT_EQ(index.touching(clip("a", start, 3)), expected) << start;
        EXPECT_EQ(index.countTouching(clip("a", start, 3)), expected.size()) << start;
    }
}

TEST(LossIndex, OfVeryManyTheFirstHundredAreNamed) {
    std::vector<PlacedLoss> losses;
    for (int i = 0; i < 1'000; ++i) {
        losses.push_back(loss("a", 1'000 - i, 2'000));
        losses.push_back(loss("a", 1'500, 0));
    }
    const LossIndex index(losses);
    const auto touching = index.touching(clip("a", 1'200, 1'000));
    ASSERT_EQ(touching.size(), 100U);
    EXPECT_EQ(index.countTouching(clip("a", 1'200, 1'000)), 2'000U);
    // The last hundred that have an extent begin first, from 1 to 100.
    EXPECT_EQ(touching.front(), 2U * 900);
    EXPECT_EQ(touching.back(), 2U * 999);
}

TEST(LossIndex, LossesWithoutTrackOrTimeTouchNoClip) {
    const std::vector<PlacedLoss> losses{
        PlacedLoss{}, {.trackID = "a"}, {.start = AAFRational(0), .duration = AAFRational(9)}};
    EXPECT_THAT(LossIndex(losses).touching(clip("a", 0, 9)), IsEmpty());
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
