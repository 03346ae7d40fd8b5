// SPDX-License-Identifier: Apache-2.0
// The whole of `trellant info`, for people and for programs.
#include "look/info_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace trellant::cli {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

/// Two tracks, one muted, with a clip each at 25 frames a second: one source inside, one missing.
class InfoOfASession : public ::testing::Test {
  protected:
    InfoOfASession() {
        const AAFTimecodeRate rate = AAFTimecodeRate::fps25();
        timeline().clock = {rate.exactRate, rate, AAFTimecodeAddress(1, 0, 0, 0, rate)};
        timeline().compositionName = "Scene 12";
        timeline().compositionLength = AAFRational(7, 2);
        timeline().hasNativeTimecode = true;
        for (const std::string number : {"1", "2"}) {
            AAFTrackState track;
            track.id = "t" + number;
            track.index = static_cast<std::int64_t>(timeline().tracks.size());
            timeline().tracks.push_back(track);
            AAFSourceEssence essence;
            essence.id = "e" + number;
            essence.sourceName = "Take " + number;
            essence.sampleRate = AAFRational(48'000);
            essence.channelCount = 1;
            timeline().essences.push_back(essence);
            AAFClipEvent clip;
            clip.id = "c" + number;
            clip.trackID = track.id;
            clip.essenceID = essence.id;
            clip.timelineStart = AAFRational(1, 2);
            clip.duration = AAFRational(1);
            timeline().events.push_back(clip);
        }
        timeline().essences[0].embedded = true;
        timeline().essences[0].bitDepth = 24;
        handOff_.compositions = {{.object = 12, .name = "Scene 12", .isRead = true}};
    }

    AAFTimeline& timeline() { return handOff_.timeline; }
    [[nodiscard]] std::string screen() const { return infoScreen("mix.omf", handOff_, false); }
    [[nodiscard]] json line() const { return json::parse(infoLine("mix.omf", handOff_)); }

    HandOff handOff_;
};

TEST_F(InfoOfASession, OfOMF1IsSaidToBeReadAsFarAsItIsKnown) {
    EXPECT_FALSE(line().contains("omfVersion"));
    handOff_.olderVersion = "1.0";
    EXPECT_THAT(screen(), HasSubstr("  Lost          nothing\n"
                                    "  Note: OMF 1.x: read as far as its structure is known\n"));
    EXPECT_EQ(line().at("omfVersion"), "1.0");
}

TEST_F(InfoOfASession, ScreenHasALineForEachFactAndThenWhatToDo) {
    EXPECT_EQ(screen(),
              "mix.omf\n"
              "  Composition   Scene 12\n"
              "  Starts at     01:00:00:00  25 fps\n"
              "  Length        00:00:03:13  (3.500000 s)\n"
              "  First sound   01:00:00:13\n"
              "  Tracks        2\n"
              "  Clips         2\n"
              "  Audio files   2: 1 embedded, 1 missing\n"
              "  Sample rates  48000 Hz (2)\n"
              "  Bit depths    not known (1), 24 bits (1)\n"
              "  Lost          nothing\n"
              "  Audio files are missing: name the folder that holds them with --media FOLDER\n");
}

TEST_F(InfoOfASession, LineHasTheSameFacts) {
    EXPECT_EQ(line(), json::parse(R"({"file":"mix.omf","composition":"Scene 12",
        "compositions":[{"object":12,"name":"Scene 12","read":true}],"start":"01:00:00:00",
        "rate":"25 fps","timecodeInFile":true,"length":"00:00:03:13","lengthSecondsExact":"7/2",
        "lengthSeconds":3.5,"firstAudible":"01:00:00:13","firstAudibleSecondsExact":"1/2",
        "firstAudibleSeconds":0.5,"editRate":"25","timecodeRate":"25","tracks":2,"clips":2,
        "audioFiles":2,"embedded":1,"located":0,"missing":1,"severalCandidates":0,"misfit":0,
        "sampleRates":{"48000":2},"bitDepths":{"unknown":1,"24":1},"losses":0,"lossesDropped":0,
        "lossesSoundDifferent":0,"lossPlaces":0,"changes":[]})"));
}

TEST_F(InfoOfASession, WithoutNameLengthOrTimecodeTheScreenSaysSo) {
    timeline().compositionName.reset();
    timeline().compositionLength.reset();
    timeline().hasNativeTimecode = false;
    EXPECT_THAT(screen(), AllOf(HasSubstr("  Composition   (no name)\n"),
                                HasSubstr("  Length        not known\n"),
                                HasSubstr("  25 fps  (assumed: the file has no timecode)\n")));
    EXPECT_FALSE(line().contains("composition"));
    EXPECT_FALSE(line().contains("length"));
    EXPECT_FALSE(line().contains("lengthSecondsExact"));
    EXPECT_EQ(line().at("timecodeInFile"), false);
}

TEST_F(InfoOfASession, WhereAllIsMutedThereIsNoFirstSound) {
    timeline().tracks[0].muted = true;
    timeline().tracks[1].muted = true;
    EXPECT_THAT(screen(), HasSubstr("  First sound   none: every clip is muted\n"));
    EXPECT_FALSE(line().contains("firstAudible"));
    EXPECT_FALSE(line().contains("firstAudibleSeconds"));
}

TEST_F(InfoOfASession, CompositionsThatWereNotReadAreNamed) {
    EXPECT_THAT(screen(), Not(HasSubstr("not read")));
    handOff_.compositions.push_back({.object = 40, .name = "Scene 13"});
    handOff_.compositions.push_back({.object = 50});
    EXPECT_THAT(screen(), HasSubstr("  Composition   Scene 12\n"
                                    "                not read: Scene 13, object 40\n"
                                    "                not read: (no name), object 50\n"));
    EXPECT_EQ(line().at("compositions").at(2), json::parse(R"({"object":50,"read":false})"));
}

TEST_F(InfoOfASession, LossesAreCountedByWhatTheyDo) {
    using Severity = AAFUnsupportedFeature::Severity;
    timeline().unsupportedFeatures = {
        {.severity = Severity::informational, .objectPath = "CMOB[1]/slot[2]"},
        {.severity = Severity::renderAffecting, .objectPath = "CMOB[1]/slot[2]"},
        {.severity = Severity::renderAffecting, .objectPath = "CMOB[1]/slot[3]"}};
    handOff_.losses.resize(3);
    EXPECT_THAT(screen(),
                AllOf(HasSubstr("  Lost          1 dropped, 2 kept but sounding different, in "),
                      HasSubstr("  What was lost, and where: trellant list losses mix.omf\n")));
    EXPECT_EQ(line().at("losses"), 3);
    EXPECT_EQ(line().at("lossesDropped"), 1);
    EXPECT_EQ(line().at("lossesSoundDifferent"), 2);
}

TEST_F(InfoOfASession, RatesThatDisagreeAreANote) {
    timeline().clock.editRate = AAFRational(24);
    // 3600 s * (1 - 24/25) = 144 s.
    EXPECT_THAT(screen(), HasSubstr("  Note: The composition counts 24 frames per second, but its "
                                    "timecode is labelled with 25: timecodes shown here run ahead "
                                    "of those of a workstation that counts frames by 144 seconds "
                                    "per hour.\n"));
    EXPECT_NEAR(line().at("driftSecondsPerHour").get<double>(), 144, 1e-9);
    EXPECT_TRUE(line().contains("rateDisagreement"));
}

TEST_F(InfoOfASession, LabelsThatRoundTheRateOfTheFramesAreNoNote) {
    const AAFTimecodeRate rate(AAFRational(30), 30, false);
    timeline().clock = {AAFRational(30'000, 1001), rate, AAFTimecodeAddress(1, 0, 0, 0, rate)};
    // 108,000 frames are an hour of labels, and 3603.6 s.
    timeline().compositionLength = AAFRational(36'036, 10);
    EXPECT_THAT(screen(), AllOf(HasSubstr("  Starts at     01:00:00:00  29.97 fps\n"),
                                HasSubstr("  Length        01:00:00:00  (3603.600000 s)\n"),
                                Not(HasSubstr("Note"))));
    EXPECT_EQ(line().at("rate"), "29.97 fps");
    EXPECT_EQ(line().at("timecodeRate"), "30000/1001");
    EXPECT_EQ(line().at("length"), "01:00:00:00");
    EXPECT_FALSE(line().contains("driftSecondsPerHour"));
}

TEST_F(InfoOfASession, SeveralRatesAndDepthsAreCounted) {
    timeline().essences[1].sampleRate = AAFRational(48'000'000, 1001);
    timeline().essences[1].bitDepth = 16;
    EXPECT_THAT(screen(), AllOf(HasSubstr("  Sample rates  47952.048 Hz (1), 48000 Hz (1)\n"),
                                HasSubstr("  Bit depths    16 bits (1), 24 bits (1)\n")));
    EXPECT_EQ(line().at("sampleRates"), json::parse(R"({"48000":1,"48000000/1001":1})"));
}

TEST_F(InfoOfASession, ColoursAreForTerminalsThatHaveThem) {
    const std::string coloured = infoScreen("mix.omf", handOff_, true);
    EXPECT_THAT(coloured, HasSubstr("\x1b[1mmix.omf\x1b[0m\n"));
    EXPECT_THAT(coloured, HasSubstr("\x1b[2mTracks\x1b[0m"));
    EXPECT_THAT(screen(), Not(HasSubstr("\x1b")));
}

TEST_F(InfoOfASession, AVeryLongNameIsCut) {
    timeline().compositionName = std::string(10'000, 'x');
    EXPECT_THAT(screen(), HasSubstr("  Composition   " + std::string(199, 'x') + "\u2026\n"));
    EXPECT_EQ(line().at("composition").get<std::string>().size(), 10'000U);
}

TEST_F(InfoOfASession, WhatWasSetRightIsListedForPrograms) {
    handOff_.changes = {{.code = "negative-gain",
                         .object = "track[0]",
                         .track = "Dialog",
                         .audioFile = "Take 1",
                         .start = AAFRational(1, 3),
                         .what = "the gain is left out"},
                        {.code = "c", .object = "clock", .what = "w"}};
    EXPECT_THAT(screen(), HasSubstr("  Repaired      2 things were set right (see above)\n"));
    EXPECT_EQ(line().at("changes"), json::parse(R"([{"code":"negative-gain","object":"track[0]",
        "what":"the gain is left out","track":"Dialog","audioFile":"Take 1",
        "timecode":"01:00:00:08","startSeconds":0.3333333333333333,"startSecondsExact":"1/3"},
        {"code":"c","object":"clock","what":"w"}])"));
}

}  // namespace
}  // namespace trellant::cli
