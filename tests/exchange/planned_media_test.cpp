// SPDX-License-Identifier: Apache-2.0
#include "planned_media.h"

#include "timelines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trellant::exchange {
namespace {

using ::testing::SizeIs;

AAFRational seconds(std::int64_t value) {
    return AAFRational(value);
}

TEST(FileStem, KeepsLettersNumbersAndALittleMore) {
    EXPECT_EQ(fileStem("Anna take 1.wav"), "Anna take 1");
    EXPECT_EQ(fileStem("M\xC3\xBCller-2_b.AIFF"), "M\xC3\xBCller-2_b");
    EXPECT_EQ(fileStem("a?b*c\"d"), "a_b_c_d");
}

TEST(FileStem, IsTheLastNameOfAPathOfAnySystem) {
    EXPECT_EQ(fileStem("/Volumes/Audio/Kick.wav"), "Kick");
    EXPECT_EQ(fileStem("C:\\Audio\\Kick.wav"), "Kick");
    EXPECT_EQ(fileStem("Disk:Audio:Kick"), "Kick");
    EXPECT_EQ(fileStem("../../etc/passwd"), "passwd");
}

TEST(FileStem, IsNoNameThatASystemKeepsForItself) {
    EXPECT_EQ(fileStem("CON"), "_CON");
    EXPECT_EQ(fileStem("nul.old.wav"), "_nul.old");
    EXPECT_EQ(fileStem("Com1.wav"), "_Com1");
    EXPECT_EQ(fileStem("Console"), "Console");
    EXPECT_EQ(fileStem("com"), "com");
}

TEST(FileStem, HasNoDotOrBlankAtAnEnd) {
    EXPECT_EQ(fileStem("..hidden. "), "hidden");
    EXPECT_EQ(fileStem(""), "audio");
    EXPECT_EQ(fileStem(" . "), "audio");
    EXPECT_EQ(fileStem(".wav"), "audio");
}

TEST(FileStem, HasAtMostAHundredCharacters) {
    EXPECT_THAT(fileStem(std::string(10'000, 'x')), SizeIs(100));
}

TEST(FileStem, HasNoCharactersThatTurnTextAround) {
    EXPECT_EQ(fileStem("a\xE2\x80\xAE"
                       "b"),
              "a_b");
    EXPECT_EQ(fileStem(std::string("a\0b\nc", 5)), "a_b_c");
}

TEST(PlannedMedia, OnlyWhatClipsPlayIsMedia) {
    AAFTimeline timeline = emptyTimeline();
    addTrack(timeline, "A1");
    addSource(timeline, "unused");
    addSource(timeline, "Anna");
    addClip(timeline, "A1", "Anna", seconds(0), seconds(1));
    addClip(timeline, "A1", "Anna", seconds(1), seconds(1));
    const ExportPlan plan = planSession(timeline, withFiles(timeline)).plan;
    ASSERT_THAT(plan.media, SizeIs(1));
    EXPECT_EQ(plan.media[0].essence, 1U);
    EXPECT_EQ(plan.media[0].fileName, "Anna.wav");
    EXPECT_EQ(plan.media[0].frames, 480'000);
    EXPECT_FALSE(plan.media[0].isOffline);
}

TEST(PlannedMedia, EqualNamesAreNumberedWhateverTheirCase) {
    AAFTimeline timeline = emptyTimeline();
    addTrack(timeline, "A1");
    int at = 0;
    for (const char* name : {"Kick", "kick", "Kick_2", "KICK.wav"}) {
        AAFSourceEssence& source = addSource(timeline, "source " + std::to_string(at));
        source.sourceName = name;
        addClip(timeline, "A1", source.id, seconds(at), seconds(1));
        ++at;
    }
    const ExportPlan plan = planSession(timeline, withFiles(timeline)).plan;
    ASSERT_THAT(plan.media, SizeIs(4));
    EXPECT_EQ(plan.media[0].fileName, "Kick.wav");
    EXPECT_EQ(plan.media[1].fileName, "kick_2.wav");
    EXPECT_EQ(plan.media[2].fileName, "Kick_2_2.wav");
    EXPECT_EQ(plan.media[3].fileName, "KICK_3.wav");
}

TEST(PlannedMedia, OneChannelOfSeveralIsAFileOfItsOwnWhereTheTargetCannotChoose) {
    AAFTimeline timeline = emptyTimeline();
    addTrack(timeline, "A1");
    addSource(timeline, "Theme", seconds(48'000), 2);
    for (std::int64_t i = 0; i < 3; ++i) {
        addClip(timeline, "A1", "Theme", seconds(i), seconds(1)).sourceChannel = i % 2;
    }
    PlanRequest request = withFiles(timeline);
    request.splitsChannels = true;
    const ExportPlan split = planSession(timeline, request).plan;
    ASSERT_THAT(split.media, SizeIs(2));
    EXPECT_EQ(split.media[0].fileName, "Theme.ch1.wav");
    EXPECT_EQ(split.media[0].channel, 0);
    EXPECT_EQ(split.media[0].channelCount, 1);
    EXPECT_EQ(split.media[1].fileName, "Theme.ch2.wav");
    EXPECT_EQ(split.media[1].channel, 1);
    const auto& clips = split.tracks[0].lanes[0].clips;
    EXPECT_EQ(clips[1].media, 1U);
    EXPECT_EQ(clips[2].media, 0U);
    EXPECT_FALSE(clips[1].channel.has_value());

    request.splitsChannels = false;
    const ExportPlan whole = planSession(timeline, request).plan;
    ASSERT_THAT(whole.media, SizeIs(1));
    EXPECT_EQ(whole.media[0].channelCount, 2);
    EXPECT_EQ(whole.tracks[0].lanes[0].clips[1].channel, 1);
}

TEST(PlannedMedia, TheFirstChannelOfAMonoFileIsTheFile) {
    AAFTimeline timeline = emptyTimeline();
    addTrack(timeline, "A1");
    addSource(timeline, "Anna");
    addClip(timeline, "A1", "Anna", seconds(0), seconds(1)).sourceChannel = 0;
    PlanRequest request = withFiles(timeline);
    request.splitsChannels = true;
    const ExportPlan plan = planSession(timeline, request).plan;
    EXPECT_FALSE(plan.media.at(0).channel.has_value());
    EXPECT_FALSE(plan.tracks[0].lanes[0].clips[0].channel.has_value());
}

TEST(PlannedMedia, WithoutAFileItIsOfflineAndAsLongAsItsClipsNeed) {
    AAFTimeline timeline = emptyTimeline();
    addTrack(timeline, "A1");
    addSource(timeline, "Anna").originalPath = "D:\\Anna.wav";
    addClip(timeline, "A1", "Anna", seconds(0), seconds(1)).sourceStartSample = 1'000;
    addClip(timeline, "A1", "Anna", seconds(1), seconds(2)).sourceStartSample = 0;
    const ExportPlan plan = planSession(timeline, {}).plan;
    EXPECT_TRUE(plan.media.at(0).isOffline);
    EXPECT_EQ(plan.media[0].frames, 96'000);
    EXPECT_EQ(plan.media[0].recordedPath, "D:\\Anna.wav");
    EXPECT_EQ(plan.media[0].bitDepth, 24);
}

}  // namespace
}  // namespace trellant::exchange
