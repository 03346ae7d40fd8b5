// SPDX-License-Identifier: Apache-2.0
#include <trellant/model/timeline_problem.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace trellant {
namespace {

using Kind = AAFTimelinePlace::Kind;

TEST(AAFTimelinePlace, PartsThatThereAreOnceOfAreTheirName) {
    EXPECT_EQ(AAFTimelinePlace{Kind::clock}.text(), "clock");
    EXPECT_EQ(AAFTimelinePlace{Kind::programStart}.text(), "program-start");
    EXPECT_EQ(AAFTimelinePlace{Kind::composition}.text(), "composition");
    EXPECT_EQ(AAFTimelinePlace{Kind::event}.text(), "event");
}

TEST(AAFTimelinePlace, ElementsOfListsHaveTheirPositionInBrackets) {
    EXPECT_EQ(AAFTimelinePlace::track(2).text(), "track[2]");
    EXPECT_EQ(AAFTimelinePlace::essence(0).text(), "essence[0]");
    EXPECT_EQ(AAFTimelinePlace::event(17).text(), "event[17]");
    EXPECT_EQ(AAFTimelinePlace::event(std::numeric_limits<std::uint64_t>::max()).text(),
              "event[18446744073709551615]");
}

TEST(AAFTimelinePlace, KindAndPositionBothCount) {
    EXPECT_EQ(AAFTimelinePlace::event(1), (AAFTimelinePlace{Kind::event, 1}));
    EXPECT_NE(AAFTimelinePlace::event(1), AAFTimelinePlace::event(2));
    EXPECT_NE(AAFTimelinePlace::event(1), AAFTimelinePlace::track(1));
    EXPECT_NE(AAFTimelinePlace::event(0), AAFTimelinePlace{Kind::event});
}

TEST(AAFTimelineProblem, CodesAndCasesBelongTogether) {
    EXPECT_EQ(rawValue(AAFTimelineProblem::emptyIdentity), "empty-identity");
    EXPECT_EQ(rawValue(AAFTimelineProblem::missingTrackReference), "missing-track-reference");
    EXPECT_EQ(rawValue(AAFTimelineProblem::timelineEndOverflow), "timeline-end-overflow");
    EXPECT_EQ(fromRawValue<AAFTimelineProblem>("invalid-source-channel"),
              AAFTimelineProblem::invalidSourceChannel);
    EXPECT_EQ(fromRawValue<AAFTimelineProblem>("Empty-Identity"), std::nullopt);
}

TEST(AAFTimelineProblem, EveryCaseHasACodeOfItsOwn) {
    constexpr auto& codes = EnumNames<AAFTimelineProblem>::names;
    ASSERT_EQ(codes.size(), static_cast<std::size_t>(AAFTimelineProblem::timelineEndOverflow) + 1);
    for (std::size_t position = 0; position < codes.size(); ++position) {
        const auto problem = static_cast<AAFTimelineProblem>(position);
        EXPECT_EQ(fromRawValue<AAFTimelineProblem>(rawValue(problem)), problem) << codes[position];
        EXPECT_EQ(codes[position].find_first_not_of("abcdefghijklmnopqrstuvwxyz-"),
                  std::string_view::npos)
            << codes[position];
    }
}

}  // namespace
}  // namespace trellant
