#include <trellant/handoff/changes.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace trellant {
namespace {

using testing::Eq;
using testing::Optional;

AAFTimeline oneClip() {
    const AAFTimecodeRate rate = AAFTimecodeRate::fps25();
    AAFTimeline timeline;
    timeline.clock = {AAFRational(25), rate, AAFTimecodeAddress(1, 0, 0, 0, rate)};
    timeline.tracks = {{.id = "t", .name = "Dialog"}};
    timeline.essences = {{.id = "e", .sourceName = "Voice.wav"}};
    timeline.events = {{.id = "v",
                        .trackID = "t",
                        .essenceID = "e",
                        .clipName = "Anna",
                        .timelineStart = AAFRational(2)}};
    return timeline;
}

TEST(Changes, ClipsAreToldByTrackNameAndTime) {
    const auto told = describedChanges(
        oneClip(),
        {{.code = "invalid-source-channel", .object = "event[0]", .field = "sourceChannel"}});
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].what, "the channel number is left out");
    EXPECT_EQ(placeText(told[0], oneClip()), "track Dialog, clip Anna, at 01:00:02:00");
}

TEST(Changes, PointsAreCounted) {
    const auto told = describedChanges(oneClip(), {{.code = "automation-time-outside-owner",
                                                    .object = "event[0]",
                                                    .action = AAFRepairChange::Action::clamped,
                                                    .field = "fadeIn.points",
                                                    .count = 3}});
    EXPECT_EQ(told.at(0).what, "3 points of the fade in are moved to the nearest possible value");
}

TEST(Changes, AudioFilesAndWholeClipsAreToldByWhatTheyAre) {
    const auto told =
        describedChanges(oneClip(), {{.code = "invalid-sample-rate",
                                      .object = "essence[0]",
                                      .action = AAFRepairChange::Action::replaced,
                                      .field = "sampleRate"},
                                     {.code = "missing-track-reference", .object = "event[0]"},
                                     {.code = "invalid-edit-rate",
                                      .object = "clock",
                                      .action = AAFRepairChange::Action::replaced,
                                      .field = "editRate"}});
    EXPECT_EQ(told.at(0).what,
              "the sample rate is taken as 48000 Hz; clips whose place in the audio file hangs on "
              "it start at the head of the file");
    EXPECT_EQ(placeText(told.at(0), oneClip()),
              "track Dialog, clip Anna, audio file Voice.wav, at 01:00:02:00");
    EXPECT_EQ(told.at(1).what, "the clip is left out");
    EXPECT_EQ(told.at(2).what, "the edit rate is replaced by a usable one");
    EXPECT_EQ(placeText(told.at(2), oneClip()), "");
}

TEST(Changes, OnePointIsOne) {
    const auto told = describedChanges(oneClip(), {{.code = "automation-time-outside-owner",
                                                    .object = "event[0]",
                                                    .action = AAFRepairChange::Action::clamped,
                                                    .field = "clipGainAutomation.points",
                                                    .count = 1}});
    EXPECT_EQ(told.at(0).what,
              "1 point of the gain automation is set to the nearest possible value");
}

TEST(Changes, ATrackThatIsListedTwiceIsToldWithWhatIsHeard) {
    const auto told =
        describedChanges(oneClip(), {{.code = "duplicate-identity", .object = "track[0]"}});
    EXPECT_EQ(told.at(0).what,
              "the track is listed twice and the second listing is left out; its clips stand twice "
              "on the first, one upon the other, and sound twice as loud");
    EXPECT_EQ(placeText(told.at(0), oneClip()), "track Dialog");
}

TEST(Changes, PositionsStandInBrackets) {
    EXPECT_THAT(positionIn("event[17]"), Optional(Eq(17U)));
    EXPECT_THAT(positionIn("clock"), Eq(std::nullopt));
    EXPECT_THAT(positionIn("event[]"), Eq(std::nullopt));
    EXPECT_THAT(positionIn("event[99999999999999999999]"), Eq(std::nullopt));
    EXPECT_THAT(positionIn("event[1"), Eq(std::nullopt));
}

}  // namespace
}  // namespace trellant
