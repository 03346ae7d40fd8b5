// SPDX-License-Identifier: Apache-2.0
// Rules about places on the timeline.
#include "sound_hand_off.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trellant::check {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

AAFProgramClock& clockOf(SoundHandOff& made) {
    return made.handOff.timeline.clock;
}

TEST(StartTimecode, IsAnyOtherThanTheProfileWants) {
    SoundHandOff made;
    clockOf(made).timelineZero = AAFTimecodeAddress(1, 0, 0, 1, AAFTimecodeRate::fps25());
    EXPECT_THAT(made.broken(), ElementsAre("start-timecode 1"));
    EXPECT_EQ(made.findings("start-timecode").at(0).found.text, "01:00:00:01");
    EXPECT_THAT(made.broken(postWith("start-timecode", R"({"timecode":"01:00:00:01"})")),
                IsEmpty());
    // At 25 fps no label has a frame 29.
    EXPECT_THAT(made.broken(postWith("start-timecode", R"({"timecode":"01:00:00:29"})")),
                ElementsAre("start-timecode 1"));
}

TEST(StartTimecode, TakesDropFrameLabelsWithEitherMark) {
    SoundHandOff made;
    made.handOff.timeline.clock = {AAFRational(30'000, 1'001), AAFTimecodeRate::fps2997DF(),
                                   AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps2997DF())};
    const Profile off = postWith("off-frame", R"({"severity":"off"})");
    EXPECT_THAT(made.broken(off), IsEmpty());
    EXPECT_THAT(made.broken(postWith("start-timecode", R"({"timecode":"01:00:00;00"})")),
                ElementsAre("off-frame 1"));
}

TEST(FrameRate, IsOneThatTheProfileDoesNotName) {
    SoundHandOff made;
    EXPECT_THAT(made.broken(postWith("frame-rate", R"({"rates":[23.98,24]})")),
                ElementsAre("frame-rate 1"));
    EXPECT_THAT(made.broken(postWith("frame-rate", R"({"rates":[25]})")), IsEmpty());
    EXPECT_THAT(made.broken(postWith("frame-rate", R"({"counting":"non-drop"})")), IsEmpty());
    EXPECT_THAT(made.broken(postWith("frame-rate", R"({"counting":"drop"})")),
                ElementsAre("frame-rate 1"));
}

TEST(FrameRate, TakesTheRoundedNameOfAFraction) {
    SoundHandOff made;
    made.handOff.timeline.clock = {AAFRational(24'000, 1'001), AAFTimecodeRate::fps23976(),
                                   AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps23976())};
    for (const std::string rate : {"23.976", "23.98"}) {
        EXPECT_THAT(made.broken(postWith("frame-rate", R"({"rates":[)" + rate + "]}")),
                    ElementsAre("off-frame 1"));
    }
    EXPECT_THAT(made.broken(postWith("frame-rate", R"({"rates":[24]})")),
                ElementsAre("frame-rate 1", "off-frame 1"));
}

TEST(FrameRate, IsNoneWhereTheFileHasNoTimecode) {
    SoundHandOff made;
    made.handOff.timeline.hasNativeTimecode = false;
    EXPECT_THAT(made.broken(), ElementsAre("frame-rate 1"));
    EXPECT_EQ(made.findings("frame-rate").at(0).found.text, "none");
}

TEST(RateLabel, IsAClockThatCountsOtherFramesThanItsLabels) {
    SoundHandOff made;
    clockOf(made).editRate = AAFRational(30'000, 1'001);
    clockOf(made).timecodeRate = AAFTimecodeRate::fps24();
    clockOf(made).timelineZero = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps24());
    const Profile off = postWith("off-frame", R"({"severity":"off"})");
    EXPECT_THAT(made.broken(off), ElementsAre("rate-label 1"));
    const Finding finding = made.findings("rate-label").at(0);
    EXPECT_EQ(finding.found.number, AAFRational(24));
    EXPECT_EQ(finding.wanted.number, AAFRational(30'000, 1'001));
    EXPECT_TRUE(finding.sentence.ends_with(" seconds per hour. Ask which of both the picture has."))
        << finding.sentence;
    clockOf(made).editRate = AAFRational(24);
    EXPECT_THAT(made.broken(off), IsEmpty());
}

TEST(RateLabel, IsSilentWhereLabelsRoundTheRateOfTheFrames) {
    SoundHandOff made;
    clockOf(made).editRate = AAFRational(24'000, 1'001);
    clockOf(made).timecodeRate = AAFTimecodeRate::fps24();
    clockOf(made).timelineZero = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps24());
    const Profile off = postWith("off-frame", R"({"severity":"off"})");
    EXPECT_THAT(made.broken(off), IsEmpty());
    EXPECT_THAT(made.broken(postWith("frame-rate", R"({"rates":[24]})")),
                ElementsAre("frame-rate 1", "off-frame 1"));
    EXPECT_THAT(made.broken(postWith("frame-rate", R"({"rates":[23.976]})")),
                ElementsAre("off-frame 1"));
}

TEST(CheckedHandOff, IsSecondsOfFramesWhereLabelsRoundTheirRate) {
    SoundHandOff made;
    clockOf(made).editRate = AAFRational(30'000, 1'001);
    clockOf(made).timecodeRate = AAFTimecodeRate(AAFRational(30), 30, false);
    clockOf(made).timelineZero =
        AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate(AAFRational(30), 30, false));
    // A minute of labels is 1800 frames, and 1800 * 1001 / 30000 = 60.06 s.
    const CheckedHandOff checked(made.handOff, made.file, nullptr);
    EXPECT_EQ(checked.secondsOf("01:01:00:00"), AAFRational(6'006, 100));
    EXPECT_EQ(checked.frameRate(), AAFRational(30'000, 1'001));
}

TEST(OffFrame, CountsBothEdgesOfEachClip) {
    SoundHandOff made;
    auto& events = made.handOff.timeline.events;
    // Half a frame of 25 is 1/50 s. The first clip's both edges move, the second one's end alone.
    events[0].timelineStart = AAFRational(501, 50);
    events[1].duration = AAFRational(101, 50);
    EXPECT_THAT(made.broken(), ElementsAre("off-frame 1"));
    const Finding finding = made.findings("off-frame").at(0);
    EXPECT_EQ(finding.found.number, AAFRational(3));
    EXPECT_EQ(finding.clip, "Take 1");
    // A whole frame.
    events[0].timelineStart = AAFRational(502, 50);
    events[1].duration = AAFRational(102, 50);
    EXPECT_THAT(made.broken(), IsEmpty());
}

TEST(Overlap, IsOneFrameAndNotACut) {
    SoundHandOff made;
    made.addClip("Dialog", "Voice.wav", AAFRational(12), AAFRational(2));
    EXPECT_THAT(made.broken(), IsEmpty());
    made.handOff.timeline.events[2].timelineStart = AAFRational(299, 25);
    EXPECT_THAT(made.broken(), ElementsAre("overlap 1"));
    const Finding finding = made.findings("overlap").at(0);
    EXPECT_EQ(finding.start, AAFRational(299, 25));
    EXPECT_EQ(finding.duration, AAFRational(1, 25));
    EXPECT_EQ(finding.clip, "Take 3");
}

TEST(Overlap, IsNoCrossfadeThatBothFadesCover) {
    SoundHandOff made;
    made.addClip("Dialog", "Voice.wav", AAFRational(11), AAFRational(2));
    auto& events = made.handOff.timeline.events;
    AAFFade fade;
    fade.duration = AAFRational(1);
    events[0].fadeOut = fade;
    EXPECT_THAT(made.broken(), ElementsAre("overlap 1"));
    events[2].fadeIn = fade;
    EXPECT_THAT(made.broken(), IsEmpty());
    fade.duration = AAFRational(24, 25);
    events[2].fadeIn = fade;
    EXPECT_THAT(made.broken(), ElementsAre("overlap 1"));
}

TEST(Overlap, IsFoundBehindAShortClipInsideALongOne) {
    SoundHandOff made;
    made.handOff.timeline.events[0].duration = AAFRational(20);
    made.addClip("Dialog", "Voice.wav", AAFRational(11), AAFRational(1));
    made.addClip("Dialog", "Voice.wav", AAFRational(14), AAFRational(1));
    EXPECT_THAT(made.broken(), ElementsAre("overlap 2"));
}

TEST(TinyClip, IsShorterThanAFrame) {
    const Profile noEdges = postWith("off-frame", R"({"severity":"off"})");
    SoundHandOff made;
    made.handOff.timeline.events[0].duration = AAFRational(1, 25);
    EXPECT_THAT(made.broken(noEdges), IsEmpty());
    made.handOff.timeline.events[0].duration = AAFRational(1'919, 48'000);
    EXPECT_THAT(made.broken(noEdges), ElementsAre("tiny-clip 1"));
    EXPECT_THAT(made.broken(postWith("tiny-clip", R"({"frames":0.5})")),
                ElementsAre("off-frame 1"));
}

TEST(Duplicate, IsTheSameAudioAtTheSameTimeOnTwoTracks) {
    SoundHandOff made;
    made.addTrack("Dialog copy");
    made.addClip("Dialog copy", "Voice.wav", AAFRational(10), AAFRational(2));
    EXPECT_THAT(made.broken(), ElementsAre("duplicate 1"));
    EXPECT_EQ(made.findings("duplicate").at(0).sentence,
              "Clip \"Take 3\" on track \"Dialog copy\" at 01:00:10:00 plays the same audio at the "
              "same time as one on track \"Dialog\", which makes it louder: remove one of both.");
}

TEST(Duplicate, IsNoOtherPlaceSampleLengthChannelOrFile) {
    for (const int change : {0, 1, 2, 3, 4}) {
        SoundHandOff made;
        made.addTrack("Dialog copy");
        AAFClipEvent& clip =
            made.addClip("Dialog copy", "Voice.wav", AAFRational(10), AAFRational(2));
        switch (change) {
            case 0:
                clip.timelineStart = AAFRational(251, 25);
                break;
            case 1:
                ++clip.sourceStartSample;
                break;
            case 2:
                clip.duration = AAFRational(51, 25);
                break;
            case 3:
                clip.sourceChannel = 0;
                break;
            default:
                made.addSource("Other.wav");
                clip.essenceID = "Other.wav";
        }
        EXPECT_THAT(made.broken(), IsEmpty()) << change;
    }
}

SoundHandOff pair(const std::string& left, const std::string& right) {
    SoundHandOff made;
    made.handOff.timeline.tracks[0].name = left;
    made.handOff.timeline.tracks[1].name = right;
    return made;
}

TEST(Pairs, AreNeighboursThatAreCutAlike) {
    EXPECT_THAT(pair("Music_L", "Music_R").broken(), IsEmpty());
    EXPECT_THAT(pair("Music.l", "Music.r").broken(), IsEmpty());
    // No sides: a letter alone, and a word that ends in one.
    EXPECT_THAT(pair("L", "Signal").broken(), IsEmpty());
    // Two lefts, and a right before its left.
    EXPECT_THAT(pair("Music_L", "Atmo_L").broken(), ElementsAre("pairs 2"));
    EXPECT_THAT(pair("Music_R", "Music_L").broken(), ElementsAre("pairs 2"));
    EXPECT_THAT(pair("Music_L", "Effects").broken(), ElementsAre("pairs 1"));
}

TEST(Pairs, AreCutDifferentlyFromTheFirstDifferenceOn) {
    SoundHandOff made = pair("Music_L", "Music_R");
    made.handOff.timeline.events[1].duration = AAFRational(51, 25);
    EXPECT_THAT(made.broken(), ElementsAre("pairs 1"));
    SoundHandOff longer = pair("Music_L", "Music_R");
    longer.addClip("Music_R", "Steps.wav", AAFRational(20), AAFRational(1));
    EXPECT_THAT(longer.broken(), ElementsAre("pairs 1"));
    EXPECT_EQ(longer.findings("pairs").at(0).clip, "Take 3");
}

}  // namespace
}  // namespace trellant::check
