// SPDX-License-Identifier: Apache-2.0
// external.omf and archive.omf, value by value; see the heads of their generators.
#include "example_run.h"

#include <gtest/gtest.h>

#include <trellant_testing/expected_event.h>

namespace trellant::testing {

namespace {

AAFTimecodeRate wholeRate(std::int64_t framesPerSecond) {
    return AAFTimecodeRate(AAFRational(framesPerSecond), framesPerSecond, false);
}

TEST(ExternalExample, EventsComeFromTheFileThatWasFoundAndTheOneThatWasNot) {
    const ExampleRun run(examples::external());
    const AAFTimeline timeline = run.timeline();
    expectTracks(timeline, {{.index = 1, .name = "Effects"}});
    expectEvents(timeline, {// Six frames of 24 at 11025 Hz are 2756.25 samples.
                            {.track = "Effects",
                             .clip = "Door shuts",
                             .source = "Door.wav",
                             .start = AAFRational(1),
                             .duration = AAFRational(1, 2),
                             .sourceStartSample = 2'756},
                            {.track = "Effects",
                             .clip = "Steps away",
                             .source = "Steps.wav",
                             .start = AAFRational(3, 2),
                             .duration = AAFRational(1)}});
    EXPECT_EQ(timeline.compositionLength, AAFRational(5, 2));
    EXPECT_EQ(timeline.compositionName, "Scene 3, effects");
    EXPECT_TRUE(timeline.unsupportedFeatures.empty());
    EXPECT_TRUE(run.workFiles().empty());
}

TEST(ExternalExample, ClockBeginsAtTheTenthHour) {
    const AAFTimeline timeline = ExampleRun(examples::external()).timeline();
    EXPECT_EQ(timeline.clock.editRate, AAFRational(24));
    EXPECT_EQ(timeline.clock.timecodeRate, wholeRate(24));
    EXPECT_EQ(timeline.clock.timelineZero, AAFTimecodeAddress(10, 0, 0, 0, wholeRate(24)));
    EXPECT_EQ(timeline.explicitProgramStart, AAFTimecodeAddress(10, 0, 0, 0, wholeRate(24)));
}

TEST(ExternalExample, SourcesNameThePlacesThatTheFileRecorded) {
    const ExampleRun run(examples::external());
    const AAFTimeline timeline = run.timeline();
    ASSERT_EQ(timeline.essences.size(), 2U);
    const AAFSourceEssence& door = timeline.essences[0];
    EXPECT_EQ(door.id, "omf-essence-00000E87-00000001-00000011");
    EXPECT_EQ(door.originalPath, "C:\\Recordings\\DOOR.WAV");
    EXPECT_FALSE(door.embedded);
    ASSERT_TRUE(door.fileURL.has_value());
    EXPECT_TRUE(door.fileURL->text.ends_with("/examples/media/Door.wav"));
    EXPECT_EQ(door.sampleRate, AAFRational(11'025));
    EXPECT_EQ(door.channelCount, 1);
    EXPECT_EQ(door.bitDepth, 16);
    EXPECT_EQ(door.codec, "PCM");
    const AAFSourceEssence& steps = timeline.essences[1];
    EXPECT_EQ(steps.id, "omf-essence-00000E87-00000001-00000021");
    EXPECT_EQ(steps.originalPath, "/recordings/scene 3/Steps.wav");
    EXPECT_FALSE(steps.embedded);
    EXPECT_FALSE(steps.fileURL.has_value());
    EXPECT_EQ(steps.sampleRate, AAFRational(48'000));
    EXPECT_EQ(steps.channelCount, 1);
    EXPECT_FALSE(steps.bitDepth.has_value());
    EXPECT_EQ(steps.codec, "WAVD");
}

TEST(ExternalExample, DiagnosticsNameTheMissingFile) {
    const auto diagnostics = ExampleRun(examples::external()).diagnostics();
    const std::vector<std::string> expected{
        "OMF2/Bento 2.0, little-endian",
        "Composition Mob object 33 selected",
        "external essence not located: /recordings/scene 3/Steps.wav",
        "Track Effects: 2 audio event(s), 2.500 s",
        "Resolved 2 event(s) to 2 audio essence(s)",
        "Composition length: 2.500 s"};
    EXPECT_EQ(diagnostics, expected);
}

TEST(ArchiveExample, EventsCountFromTheOriginOfTheFile) {
    const ExampleRun run(examples::archive());
    const AAFTimeline timeline = run.timeline();
    expectTracks(timeline, {{.index = 0, .name = "Caf\u00E9"}});
    expectEvents(
        timeline,
        {// Two frames of 25 at 22050 Hz, and 441 samples.
         {.track = "Caf\u00E9",
          .clip = "Caf\u00E9, morning",
          .source = "Reel 7 transfer.aif",
          .start = AAFRational(2, 5),
          .duration = AAFRational(4, 5),
          .sourceStartSample = 2'205,
          .fadeIn = ExpectedFade{AAFRational(2, 25), AAFAutomationInterpolation::linear()}},
         {.track = "Caf\u00E9",
          .source = "Reel 7 transfer.aif",
          .start = AAFRational(6, 5),
          .duration = AAFRational(8, 25),
          .sourceStartSample = 441}});
    EXPECT_EQ(timeline.compositionLength, AAFRational(38, 25));
    EXPECT_EQ(timeline.compositionName, "Caf\u00E9");
    EXPECT_TRUE(timeline.unsupportedFeatures.empty());
}

TEST(ArchiveExample, ClockBeginsTenSecondsBeforeTheHour) {
    const AAFTimeline timeline = ExampleRun(examples::archive()).timeline();
    EXPECT_EQ(timeline.clock.editRate, AAFRational(25));
    EXPECT_EQ(timeline.clock.timecodeRate, wholeRate(25));
    EXPECT_EQ(timeline.clock.timelineZero, AAFTimecodeAddress(0, 59, 50, 0, wholeRate(25)));
    EXPECT_EQ(timeline.hasNativeTimecode, true);
}

TEST(ArchiveExample, SourceIsTheFileAndNotItsReel) {
    const AAFTimeline timeline = ExampleRun(examples::archive()).timeline();
    ASSERT_EQ(timeline.essences.size(), 1U);
    const AAFSourceEssence& essence = timeline.essences[0];
    EXPECT_EQ(essence.id, "omf-essence-0000A2C4-00000001-00000011");
    EXPECT_TRUE(essence.embedded);
    ASSERT_TRUE(essence.fileURL.has_value());
    EXPECT_TRUE(essence.fileURL->text.ends_with("/Reel%207%20transfer.aifc"));
    EXPECT_EQ(essence.sampleRate, AAFRational(22'050));
    EXPECT_EQ(essence.channelCount, 1);
    EXPECT_EQ(essence.bitDepth, 16);
    EXPECT_EQ(essence.codec, "NONE");
}

TEST(ArchiveExample, DiagnosticsNameTheOlderForm) {
    const auto diagnostics = ExampleRun(examples::archive()).diagnostics();
    const std::vector<std::string> expected{
        "OMF2/Bento 1.0, big-endian", "Composition Mob object 28 selected",
        "Track Caf\u00E9: 2 audio event(s), 1.520 s", "Resolved 2 event(s) to 1 audio essence(s)",
        "Composition length: 1.520 s"};
    EXPECT_EQ(diagnostics, expected);
}

}  // namespace

}  // namespace trellant::testing
