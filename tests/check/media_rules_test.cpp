// SPDX-License-Identifier: Apache-2.0
// Rules about audio files: what breaks each of them and nothing else, and what lies at its edge.
#include "sound_hand_off.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trellant::check {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

AAFSourceEssence& firstSource(SoundHandOff& made) {
    return made.handOff.timeline.essences[0];
}

AAFClipEvent& firstClip(SoundHandOff& made) {
    return made.handOff.timeline.events[0];
}

TEST(MediaRules, ASoundHandOffBreaksNone) {
    EXPECT_THAT(SoundHandOff().broken(), IsEmpty());
}

TEST(MediaMissing, IsAnAudioFileThatAClipPlays) {
    SoundHandOff made;
    firstSource(made).embedded = false;
    EXPECT_THAT(made.broken(), ElementsAre("media-missing 1"));
    const Finding finding = made.findings("media-missing").at(0);
    EXPECT_EQ(
        finding.sentence,
        "Audio file \"Voice.wav\" was not found, and 1 clip plays it: send the file along, or "
        "name its folder with --media.");
    EXPECT_EQ(finding.audioFile, "Voice.wav");
    EXPECT_EQ(finding.track, "Dialog");
    EXPECT_EQ(finding.trackNumber, 1);
    EXPECT_EQ(finding.clip, "Take 1");
    EXPECT_EQ(finding.start, AAFRational(10));
    EXPECT_EQ(finding.duration, AAFRational(2));
    EXPECT_EQ(finding.objectPath, "CMOB[9]/slot[100]/SCLP[200]");
    EXPECT_EQ(finding.found.text, "missing");
    EXPECT_EQ(finding.wanted.text, "found");
}

TEST(MediaMissing, IsNoFileThatWasFoundOrThatNothingPlays) {
    SoundHandOff made;
    firstSource(made).embedded = false;
    firstSource(made).fileURL = AAFURL{"file:///Voice.wav"};
    EXPECT_THAT(made.broken(), IsEmpty());
    SoundHandOff unused;
    unused.addSource("Spare.wav").embedded = false;
    EXPECT_THAT(unused.broken(), IsEmpty());
}

TEST(MediaAmbiguous, IsANameThatSeveralFilesOrNoneOfThemFit) {
    SoundHandOff made;
    firstSource(made).embedded = false;
    made.handOff.openChoices.bySource["Voice.wav"] = {
        .candidates = {{.path = "/a/Voice.wav"}, {.path = "/b/Voice.wav"}}, .files = 2};
    EXPECT_THAT(made.broken(), ElementsAre("media-ambiguous 1"));
    EXPECT_EQ(made.findings("media-ambiguous").at(0).found.text, "severalCandidates");
    made.handOff.openChoices.bySource["Voice.wav"].candidates = {
        {.path = "/a/Voice.wav", .misfit = "too short"}};
    EXPECT_THAT(made.broken(), ElementsAre("media-ambiguous 1"));
    EXPECT_EQ(made.findings("media-ambiguous").at(0).found.text, "misfit");
}

TEST(MediaLinked, IsWhatTheProfileDoesNotWant) {
    SoundHandOff made;
    firstSource(made).embedded = false;
    firstSource(made).fileURL = AAFURL{"file:///Voice.wav"};
    // One of both is linked, the other embedded.
    EXPECT_THAT(made.broken(postWith("media-linked", R"({"media":"embedded"})")),
                ElementsAre("media-linked 1"));
    EXPECT_THAT(made.broken(postWith("media-linked", R"({"media":"linked"})")),
                ElementsAre("media-linked 1"));
    EXPECT_THAT(made.broken(), IsEmpty());
}

// A clip of 2 s from second 10 on ends at sample 12 * 48,000 = 576,000.
TEST(MediaPastEnd, IsOneSampleTooFewAndNotTheLastOne) {
    const Profile noHandles = postWith("handles", R"({"severity":"off"})");
    SoundHandOff made;
    made.handOff.mediaFrames[0] = 575'999;
    EXPECT_THAT(made.broken(noHandles), ElementsAre("media-past-end 1"));
    const Finding finding = made.findings("media-past-end").at(0);
    EXPECT_EQ(finding.found.number, AAFRational(576'000));
    EXPECT_EQ(finding.wanted.number, AAFRational(575'999));
    EXPECT_EQ(finding.unit, "samples");
    made.handOff.mediaFrames[0] = 576'000;
    EXPECT_THAT(made.broken(noHandles), IsEmpty());
    // Where nobody knows how long it is, nothing is said.
    made.handOff.mediaFrames[0].reset();
    EXPECT_THAT(made.broken(noHandles), IsEmpty());
}

TEST(MediaUnused, TellsHowManyWhichAndHowLarge) {
    SoundHandOff made;
    made.handOff.contents = AAFWorkerExtensions::Contents{
        .unusedMedia = 3, .unusedNames = {"Room", "Wind"}, .unusedBytes = 900};
    EXPECT_THAT(made.broken(), ElementsAre("media-unused 1"));
    EXPECT_EQ(
        made.findings("media-unused").at(0).sentence,
        "3 audio files inside the OMF file (\"Room\", \"Wind\", ...) no clip plays, 900 bytes "
        "in all: remove unused audio before the export.");
    made.handOff.contents = AAFWorkerExtensions::Contents{};
    EXPECT_THAT(made.broken(), IsEmpty());
    // A worker that does not say.
    made.handOff.contents.reset();
    EXPECT_THAT(made.broken(), IsEmpty());
}

// Five seconds are 240,000 samples, on each side.
TEST(Handles, AreShortByOneSampleBeforeOrBehind) {
    SoundHandOff made;
    firstClip(made).sourceStartSample = 240'000;
    EXPECT_THAT(made.broken(), IsEmpty());
    firstClip(made).sourceStartSample = 239'999;
    EXPECT_THAT(made.broken(), ElementsAre("handles 1"));
    firstClip(made).sourceStartSample = 480'000;
    made.handOff.mediaFrames[0] = 576'000 + 240'000;
    EXPECT_THAT(made.broken(), IsEmpty());
    made.handOff.mediaFrames[0] = 576'000 + 239'999;
    EXPECT_THAT(made.broken(), ElementsAre("handles 1"));
}

TEST(Handles, TellTheShortestFirst) {
    SoundHandOff made;
    // One second before the first clip; half a second behind the second one.
    firstClip(made).sourceStartSample = 48'000;
    made.handOff.mediaFrames[1] = 576'000 + 24'000;
    const auto findings = made.findings("handles");
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].clip, "Take 2");
    EXPECT_EQ(findings[0].found.number, AAFRational(1, 2));
    EXPECT_EQ(findings[0].sentence,
              "Clip \"Take 2\" on track \"Effects\" at 01:00:10:00 has 10 s of audio before it and "
              "0.5 s behind it; 5 s are wanted on each side: export again with longer handles.");
    EXPECT_EQ(findings[1].clip, "Take 1");
    EXPECT_EQ(findings[1].found.number, AAFRational(1));
    EXPECT_EQ(findings[1].wanted.number, AAFRational(5));
    EXPECT_EQ(findings[1].unit, "s");
}

TEST(Handles, BehindAreNotJudgedWhereNobodyKnowsTheLength) {
    SoundHandOff made;
    made.handOff.mediaFrames[0].reset();
    EXPECT_THAT(made.broken(), IsEmpty());
    firstClip(made).sourceStartSample = 0;
    EXPECT_THAT(made.broken(), ElementsAre("handles 1"));
}

TEST(RateExpected, IsAnyThatTheProfileDoesNotName) {
    SoundHandOff made;
    for (AAFSourceEssence& essence : made.handOff.timeline.essences) {
        essence.sampleRate = AAFRational(44'100);
    }
    EXPECT_THAT(made.broken(), ElementsAre("rate-expected 2"));
    EXPECT_THAT(made.broken(postWith("rate-expected", R"({"rates":[44100,48000]})")), IsEmpty());
    const Finding finding = made.findings("rate-expected").at(0);
    EXPECT_EQ(finding.found.text, "44100");
    EXPECT_EQ(finding.wanted.number, AAFRational(48'000));
    EXPECT_EQ(finding.unit, "Hz");
}

TEST(RateMixed, IsMoreThanOneAmongThoseThatArePlayed) {
    const Profile any = postWith("rate-expected", R"({"severity":"off"})");
    SoundHandOff made;
    firstSource(made).sampleRate = AAFRational(96'000);
    // The clip then begins at second 5, which leaves just enough before it.
    EXPECT_THAT(made.broken(any), ElementsAre("rate-mixed 1"));
    SoundHandOff spare;
    spare.addSource("Spare.wav").sampleRate = AAFRational(96'000);
    EXPECT_THAT(spare.broken(any), IsEmpty());
}

TEST(DepthExpected, IsAnyThatTheProfileDoesNotName) {
    SoundHandOff made;
    for (AAFSourceEssence& essence : made.handOff.timeline.essences) {
        essence.bitDepth = 20;
    }
    EXPECT_THAT(made.broken(), ElementsAre("depth-expected 2"));
    for (AAFSourceEssence& essence : made.handOff.timeline.essences) {
        essence.bitDepth = 16;
    }
    EXPECT_THAT(made.broken(), IsEmpty());
    EXPECT_THAT(made.broken(postWith("depth-expected", R"({"depths":[24]})")),
                ElementsAre("depth-expected 2"));
    for (AAFSourceEssence& essence : made.handOff.timeline.essences) {
        essence.bitDepth.reset();
    }
    EXPECT_THAT(made.broken(), IsEmpty());
}

TEST(DepthMixed, IsMoreThanOne) {
    SoundHandOff made;
    firstSource(made).bitDepth = 16;
    EXPECT_THAT(made.broken(), ElementsAre("depth-mixed 1"));
    firstSource(made).bitDepth.reset();
    EXPECT_THAT(made.broken(), IsEmpty());
}

TEST(ChannelsMono, IsAFileWithTwo) {
    SoundHandOff made;
    firstSource(made).channelCount = 2;
    EXPECT_THAT(made.broken(), ElementsAre("channels-mono 1"));
    EXPECT_EQ(made.findings("channels-mono").at(0).found.number, AAFRational(2));
}

/// Both sources were listened to, and nothing was noticed but a pop two seconds before the program.
SoundHandOff heard() {
    SoundHandOff made;
    made.isHeard = true;
    made.sound = {{.channels = {{}}}, {.channels = {{}}}};
    // The timeline starts at 00:59:50:00 then: the pop at 00:59:58:00 is at its second 8. A clip of
    // its own plays it, one frame (1,920 samples) long, from the source's second 12 on.
    made.handOff.timeline.clock.timelineZero =
        AAFTimecodeAddress(0, 59, 50, 0, AAFTimecodeRate::fps25());
    made.addTrack("Pop");
    made.addClip("Pop", "Steps.wav", AAFRational(8), AAFRational(1)).sourceStartSample = 576'000;
    made.sound[1].channels[0].tones = {{.first = 576'000, .samples = 1'920}};
    return made;
}

Profile leader() {
    return postWith("start-timecode", R"({"timecode":"00:59:50:00"})");
}

TEST(SoundRules, AreNotLookedAtWhereNobodyListened) {
    const Verdict verdict = SoundHandOff().verdict();
    EXPECT_FALSE(verdict.audioRead);
    for (const RuleVerdict& rule : verdict.rules) {
        EXPECT_EQ(rule.wasLooked, rule.rule->needs != RuleNeeds::sound) << rule.rule->id;
    }
}

TEST(SoundRules, AreKeptByAHandOffWithAPop) {
    EXPECT_THAT(heard().broken(leader()), IsEmpty());
}

TEST(PopHead, MustBeginWithinAFrameAndLastAFrameOrTwo) {
    SoundHandOff made = heard();
    SampleRange& pop = made.sound[1].channels[0].tones[0];
    // A frame late, then a sample more.
    pop.first = 576'000 + 1'920;
    EXPECT_THAT(made.broken(leader()), IsEmpty());
    ++pop.first;
    EXPECT_THAT(made.broken(leader()), ElementsAre("pop-head 1"));
    pop = {.first = 576'000, .samples = 5'760};
    EXPECT_THAT(made.broken(leader()), IsEmpty());
    // Longer than three frames it is a line-up tone; shorter than half a frame a click.
    ++pop.samples;
    EXPECT_THAT(made.broken(leader()), ElementsAre("pop-head 1"));
    pop.samples = 959;
    EXPECT_THAT(made.broken(leader()), ElementsAre("pop-head 1"));
    made.sound[1].channels[0].tones.clear();
    EXPECT_THAT(made.broken(leader()), ElementsAre("pop-head 1"));
}

TEST(PopHead, IsMissingWhereTheTimelineBeginsBehindIt) {
    SoundHandOff made;
    made.isHeard = true;
    made.sound = {{.channels = {{}}}, {.channels = {{}}}};
    EXPECT_THAT(made.broken(), ElementsAre("pop-head 1"));
    EXPECT_FALSE(made.findings("pop-head").at(0).start.has_value());
}

// The first clip plays the samples from 480,000 to 576,000.
TEST(Silent, IsAClipWithinOneRunOfZeros) {
    SoundHandOff made = heard();
    auto& silences = made.sound[0].channels[0].silences;
    silences = {{.first = 480'000, .samples = 96'000}};
    EXPECT_THAT(made.broken(leader()), ElementsAre("silent 1"));
    silences = {{.first = 480'001, .samples = 95'999}};
    EXPECT_THAT(made.broken(leader()), IsEmpty());
    silences = {{.first = 480'000, .samples = 95'999}};
    EXPECT_THAT(made.broken(leader()), IsEmpty());
    // One sample between two runs is sound.
    silences = {{.first = 400'000, .samples = 100'000}, {.first = 500'001, .samples = 100'000}};
    EXPECT_THAT(made.broken(leader()), IsEmpty());
}

TEST(Silent, IsTheChannelThatTheClipPlays) {
    SoundHandOff made = heard();
    made.sound[0].channels = {{.silences = {{.first = 0, .samples = 4'800'000}}}, {}};
    EXPECT_THAT(made.broken(leader()), IsEmpty());
    firstClip(made).sourceChannel = 0;
    EXPECT_THAT(made.broken(leader()), ElementsAre("silent 1"));
    firstClip(made).sourceChannel = 1;
    EXPECT_THAT(made.broken(leader()), IsEmpty());
}

TEST(Clipped, CountsWhatTheClipPlaysOfARun) {
    SoundHandOff made = heard();
    auto& runs = made.sound[0].channels[0].fullScale;
    // Three samples within it, then two of three before its end.
    runs = {{.first = 480'000, .samples = 3}};
    EXPECT_THAT(made.broken(leader()), ElementsAre("clipped 1"));
    runs = {{.first = 575'998, .samples = 3}};
    EXPECT_THAT(made.broken(leader()), IsEmpty());
    runs = {{.first = 479'000, .samples = 900}, {.first = 576'000, .samples = 900}};
    EXPECT_THAT(made.broken(leader()), IsEmpty());
}

TEST(Clipped, TellsHowOftenAndWhereFirst) {
    SoundHandOff made = heard();
    // A second into the clip, which begins at 01:00:00:00 by the clock from 00:59:50:00.
    made.sound[0].channels[0].fullScale = {{.first = 528'000, .samples = 5},
                                           {.first = 540'000, .samples = 3}};
    const Finding finding = made.findings("clipped").at(0);
    EXPECT_EQ(finding.sentence,
              "Clip \"Take 1\" on track \"Dialog\" at 01:00:00:00 is cut off at full scale in 2 "
              "places, first at 01:00:01:00: look for a recording with a lower level.");
    EXPECT_EQ(finding.found.number, AAFRational(2));
}

}  // namespace
}  // namespace trellant::check
