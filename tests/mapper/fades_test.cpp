// SPDX-License-Identifier: Apache-2.0
// A clip's own fades.
#include "song.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ClipFades : public ::testing::Test {
  protected:
    const AAFClipEvent& eventOf(ObjectID clip) {
        song_.addSlot(clip);
        mapped_ = song_.map();
        return mapped_.timeline.events.at(0);
    }

    Song song_;
    Mapped mapped_;
};

TEST_F(ClipFades, TypesOneTwoAndThreeAreCurves) {
    const std::vector<std::pair<std::int32_t, std::string>> curves{
        {1, "linear"}, {2, "power"}, {3, "logarithmic"}};
    for (const auto& [type, curve] : curves) {
        Song song;
        song.addSlot(song.clip(100, FadeSpec{10, type}, FadeSpec{20, type}));
        const Mapped mapped = song.map();
        EXPECT_EQ(described(mapped.timeline.events.at(0).fadeIn), "fadeIn 10 " + curve);
        EXPECT_EQ(described(mapped.timeline.events.at(0).fadeOut), "fadeOut 20 " + curve);
        EXPECT_THAT(recordsOf(mapped), IsEmpty());
    }
}

TEST_F(ClipFades, MissingTypeIsLinear) {
    const AAFClipEvent& event = eventOf(song_.clip(100, FadeSpec{10}, FadeSpec{20}));
    EXPECT_EQ(described(event.fadeIn), "fadeIn 10 linear");
    EXPECT_EQ(described(event.fadeOut), "fadeOut 20 linear");
}

TEST_F(ClipFades, TypeZeroIsKeptByNameAndReportedOnce) {
    const ObjectID clip = song_.clip(100, FadeSpec{10, 0}, std::nullopt);
    EXPECT_EQ(described(eventOf(clip).fadeIn), "fadeIn 10 unsupported(OMF Fade Type 0)");
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "OMF Fade Type 0",
                                            "SCLP[" + std::to_string(clip) + "]/FadeIn")));
}

TEST_F(ClipFades, UnknownTypesOnBothEndsAreReportedFadeInFirst) {
    const ObjectID clip = song_.clip(100, FadeSpec{10, 4}, FadeSpec{20, -1});
    const AAFClipEvent& event = eventOf(clip);
    EXPECT_EQ(described(event.fadeIn), "fadeIn 10 unsupported(OMF Fade Type 4)");
    EXPECT_EQ(described(event.fadeOut), "fadeOut 20 unsupported(OMF Fade Type -1)");
    const std::string path = "SCLP[" + std::to_string(clip) + "]";
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "OMF Fade Type 4", path + "/FadeIn"),
                            unsupportedLine(1, "OMF Fade Type -1", path + "/FadeOut")));
}

TEST_F(ClipFades, LengthBelowOneIsNoFade) {
    const AAFClipEvent& event = eventOf(song_.clip(100, FadeSpec{0, 9}, FadeSpec{-5, 9}));
    EXPECT_EQ(described(event.fadeIn), "none");
    EXPECT_EQ(described(event.fadeOut), "none");
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(ClipFades, TypeWithoutALengthIsNoFade) {
    const AAFClipEvent& event =
        eventOf(song_.clip(100).int32("OMFI:SCLP:FadeInType", 9).int32("OMFI:SCLP:FadeOutType", 9));
    EXPECT_EQ(described(event.fadeIn), "none");
    EXPECT_EQ(described(event.fadeOut), "none");
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(ClipFades, FadeLongerThanTheClipStays) {
    EXPECT_EQ(described(eventOf(song_.clip(10, FadeSpec{50}, std::nullopt)).fadeIn),
              "fadeIn 50 linear");
}

TEST_F(ClipFades, CountInTheSlotsEditRate) {
    song_.addSlot(
        {.editRate = Ratio{30'000, 1'001}, .segment = song_.clip(100, FadeSpec{3}, std::nullopt)});
    const Mapped mapped = song_.map();
    const AAFClipEvent& event = mapped.timeline.events.at(0);
    ASSERT_TRUE(event.fadeIn.has_value());
    EXPECT_EQ(event.fadeIn->duration, AAFRational(1'001, 10'000));
}

TEST_F(ClipFades, ClipInASequenceKeepsItsFades) {
    const ObjectID clip = song_.clip(100, FadeSpec{10, 2}, FadeSpec{20, 3});
    const AAFClipEvent& event = eventOf(song_.omf.sequence({clip}));
    EXPECT_EQ(described(event.fadeIn), "fadeIn 10 power");
    EXPECT_EQ(described(event.fadeOut), "fadeOut 20 logarithmic");
}

}  // namespace
}  // namespace trellant::testing
