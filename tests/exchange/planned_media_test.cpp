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
    EXPECT_EQ(fileStem("Anna take 1.wav", NameKind::path), "Anna take 1");
    EXPECT_EQ(fileStem("M\xC3\xBCller-2_b.AIFF", NameKind::path), "M\xC3\xBCller-2_b");
    EXPECT_EQ(fileStem("a?b*c\"d", NameKind::path), "a_b_c_d");
}

TEST(FileStem, IsTheLastNameOfAPathOfAnySystem) {
    EXPECT_EQ(fileStem("/Volumes/Audio/Kick.wav", NameKind::path), "Kick");
    EXPECT_EQ(fileStem("C:\\Audio\\Kick.wav", NameKind::path), "Kick");
    EXPECT_EQ(fileStem("Disk:Audio:Kick", NameKind::path), "Kick");
    EXPECT_EQ(fileStem("../../etc/passwd", NameKind::path), "passwd");
}

TEST(FileStem, OfANameKeepsWhatStandsBeforeAColon) {
    EXPECT_EQ(fileStem("Rain: garden.wav", NameKind::name), "Rain_ garden");
    EXPECT_EQ(fileStem("12:30:00 take", NameKind::name), "12_30_00 take");
    EXPECT_EQ(fileStem("Disk:Audio:Kick", NameKind::name), "Disk_Audio_Kick");
}

TEST(FileStem, IsNoNameThatASystemKeepsForItself) {
    EXPECT_EQ(fileStem("CON", NameKind::path), "_CON");
    EXPECT_EQ(fileStem("nul.old.wav", NameKind::path), "_nul.old");
    EXPECT_EQ(fileStem("Com1.wav", NameKind::path), "_Com1");
    EXPECT_EQ(fileStem("Console", NameKind::path), "Console");
    EXPECT_EQ(fileStem("com", NameKind::path), "com");
}

TEST(FileStem, HasNoDotOrBlankAtAnEnd) {
    EXPECT_EQ(fileStem("..hidden. ", NameKind::path), "hidden");
    EXPECT_EQ(fileStem("", NameKind::path), "audio");
    EXPECT_EQ(fileStem(" . ", NameKind::path), "audio");
    EXPECT_EQ(fileStem(".wav", NameKind::path), "audio");
}

TEST(FileStem, HasAtMostAHundredCharacters) {
    EXPECT_THAT(fileStem(std::string(10'000, 'x'), NameKind::name), SizeIs(100));
}

TEST(FileStem, HasNoCharactersThatTurnTextAround) {
    EXPECT_EQ(fileStem("a\xE2\x80\xAE"
                       "b",
                       NameKind::name),
              "a_b");
    EXPECT_EQ(fileStem(std::string("a\0b\nc", 5), NameKind::name), "a_b_c");
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

TEST(PlannedMedia, AGivenNameOfAFileIsNotThatOfItsSource) {
    AAFTimeline timeline = emptyTimeline();
    addTrack(timeline, "A1");
    addSource(timeline, "Audio.wav");
    addClip(timeline, "A1", "Audio.wav", seconds(0), seconds(1));
    PlanRequest request = withFiles(timeline);
    request.fileNames.emplace(0, "Anna 1");
    const ExportPlan plan = planSession(timeline, request).plan;
    ASSERT_THAT(plan.media, SizeIs(1));
    EXPECT_EQ(plan.media[0].name, "Audio.wav");
    EXPECT_EQ(plan.media[0].fileName, "Anna 1.wav");
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
