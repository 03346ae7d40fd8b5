// SPDX-License-Identifier: Apache-2.0
// session.omf, value by value. Positions come from the table at the head of its generator: samples
// of the tracks at 48000 Hz; samples of a source are seconds times its own rate.
#include "example_run.h"

#include <gtest/gtest.h>

#include <trellant_testing/expected_event.h>

namespace trellant::testing {

namespace {

ExpectedFade fade(const AAFRational& duration, AAFAutomationInterpolation curve) {
    return {duration, std::move(curve)};
}

const ExampleRun& sessionRun() {
    static const ExampleRun run(examples::session());
    return run;
}

const AAFTimeline& timeline() {
    static const AAFTimeline timeline = sessionRun().timeline();
    return timeline;
}

TEST(SessionExample, ClockIsDropFrameFromTheFirstHour) {
    const AAFTimecodeRate rate = AAFTimecodeRate::fps2997DF();
    EXPECT_EQ(timeline().clock.editRate, AAFRational(30'000, 1'001));
    EXPECT_EQ(timeline().clock.timecodeRate, rate);
    EXPECT_EQ(timeline().clock.timelineZero, AAFTimecodeAddress(1, 0, 0, 0, rate));
    EXPECT_EQ(timeline().explicitProgramStart, AAFTimecodeAddress(1, 0, 0, 0, rate));
    EXPECT_EQ(timeline().hasNativeTimecode, true);
    EXPECT_EQ(timeline().compositionName, "Scene 12");
    // The longest track is Atmo: 110400 samples.
    EXPECT_EQ(timeline().compositionLength, AAFRational(23, 10));
    EXPECT_FALSE(timeline().sourceApplication.has_value());
}

TEST(SessionExample, TracksHaveTheirSlotsIndexAndThePanOfTheirClips) {
    // Slot 0 is timecode, slot 1 picture.
    expectTracks(timeline(), {{.index = 2, .name = "Dialog_L"},
                              {.index = 3, .name = "Dialog_R", .pan = 1},
                              {.index = 4, .name = "Music_L", .pan = 0},
                              {.index = 5, .name = "Music_R", .pan = 1},
                              {.index = 6, .name = "Atmo"}});
}

TEST(SessionExample, EventsAreWhereTheTracksPutThem) {
    const auto linear = AAFAutomationInterpolation::linear();
    const auto power = AAFAutomationInterpolation::power();
    const auto logarithmic = AAFAutomationInterpolation::logarithmic();
    const AAFAutomationEnvelope calling{
        linear, {{AAFRational(0), 0.25}, {AAFRational(1, 2), 1}, {AAFRational(1), 0.5}}};
    expectEvents(
        timeline(),
        {{.track = "Dialog_L",
          .clip = "Anna take 1",
          .source = "Voice_Anna.wav",
          .start = AAFRational(1, 2),
          .duration = AAFRational(1, 2),
          .role = AAFChannelRole::left,
          .fadeIn = fade(AAFRational(1, 20), linear),
          .fadeOut = fade(AAFRational(1, 10), power)},
         // 2400 of 48000 at 48000 Hz. Its fade out is the dissolve.
         {.track = "Dialog_L",
          .clip = "Ben answers",
          .source = "Voice_Ben.wav",
          .start = AAFRational(1),
          .duration = AAFRational(3, 8),
          .sourceStartSample = 2'400,
          .role = AAFChannelRole::left,
          .fadeIn = fade(AAFRational(1, 40), logarithmic),
          .fadeOut = fade(AAFRational(1, 10), linear)},
         // 11/8 - 1/10; 24000 less the 4800 - 1600 behind the cut; a quarter second at 24000 Hz.
         {.track = "Dialog_L",
          .clip = "Anna take 2",
          .source = "Voice_Anna.wav",
          .start = AAFRational(51, 40),
          .duration = AAFRational(13, 30),
          .sourceStartSample = 6'000,
          .role = AAFChannelRole::left,
          .fadeIn = fade(AAFRational(1, 10), linear)},
         // 51/40 + 13/30; 12000 less the 1600 before the cut, which move its source as well.
         {.track = "Dialog_L",
          .clip = "Ben leaves",
          .source = "Voice_Ben.wav",
          .start = AAFRational(41, 24),
          .duration = AAFRational(13, 60),
          .sourceStartSample = 1'600,
          .role = AAFChannelRole::left},
         {.track = "Dialog_R",
          .clip = "Ben aside",
          .source = "Voice_Ben.wav",
          .start = AAFRational(3, 4),
          .duration = AAFRational(1, 4),
          .sourceStartSample = 6'000,
          .role = AAFChannelRole::right,
          .gain = 0.5},
         {.track = "Dialog_R",
          .clip = "Anna calls",
          .source = "Voice_Anna.wav",
          .start = AAFRational(5, 4),
          .duration = AAFRational(1, 2),
          .role = AAFChannelRole::right,
          .gain = 0.75,
          .gainAutomation = calling},
         // A tenth of a second at 22050 Hz; a half of a half.
         {.track = "Music_L",
          .clip = "Theme",
          .source = "Theme.aif",
          .start = AAFRational(0),
          .duration = AAFRational(4, 5),
          .sourceStartSample = 2'205,
          .channel = 0,
          .role = AAFChannelRole::left,
          .gain = 0.25,
          .fadeOut = fade(AAFRational(1, 5), power)},
         {.track = "Music_R",
          .clip = "Theme",
          .source = "Theme.aif",
          .start = AAFRational(0),
          .duration = AAFRational(4, 5),
          .sourceStartSample = 2'205,
          .channel = 1,
          .role = AAFChannelRole::right,
          .gain = 0.25,
          .fadeOut = fade(AAFRational(1, 5), power)},
         {.track = "Atmo",
          .clip = "Rain wide",
          .source = "Rain: garden.wav",
          .start = AAFRational(0),
          .duration = AAFRational(1)},
         // Half a second at 11025 Hz is 5512.5 samples, rounded away from zero.
         {.track = "Atmo",
          .clip = "Rain close",
          .source = "Rain: garden.wav",
          .start = AAFRational(1),
          .duration = AAFRational(1, 2),
          .sourceStartSample = 5'513},
         // Behind the 19200 samples of the effect.
         {.track = "Atmo",
          .source = "Rain: garden.wav",
          .start = AAFRational(19, 10),
          .duration = AAFRational(1, 5)}});
}

TEST(SessionExample, SourcesAreTheFourEmbeddedFiles) {
    const auto expectSource = [](std::size_t index, std::string_view name, std::string_view uid,
                                 std::int64_t rate, std::int64_t channels, std::int64_t bits,
                                 std::string_view codec) {
        SCOPED_TRACE(name);
        ASSERT_GT(timeline().essences.size(), index);
        const AAFSourceEssence& essence = timeline().essences[index];
        EXPECT_EQ(essence.id, "omf-essence-" + std::string(uid));
        EXPECT_EQ(essence.mobID, uid);
        EXPECT_EQ(essence.sourceName, name);
        EXPECT_EQ(essence.sampleRate, AAFRational(rate));
        EXPECT_EQ(essence.channelCount, channels);
        EXPECT_EQ(essence.bitDepth, bits);
        EXPECT_EQ(essence.codec, codec);
        EXPECT_TRUE(essence.embedded);
        EXPECT_TRUE(essence.fileURL.has_value());
        EXPECT_FALSE(essence.originalPath.has_value());
    };
    EXPECT_EQ(timeline().essences.size(), 4U);
    expectSource(0, "Voice_Anna.wav", "00005E55-00000001-00000011", 24'000, 1, 16, "PCM");
    expectSource(1, "Voice_Ben.wav", "00005E55-00000001-00000021", 48'000, 1, 24, "PCM");
    expectSource(2, "Theme.aif", "00005E55-00000001-00000031", 22'050, 2, 16, "NONE");
    expectSource(3, "Rain: garden.wav", "00005E55-00000001-00000041", 11'025, 1, 16, "PCM");
}

// Objects are numbered in the order in which the generator makes them.
constexpr std::string_view composition = "CMOB[161]";

TEST(SessionExample, LossesSayWhatIsMissingAndWhere) {
    using Severity = AAFUnsupportedFeature::Severity;
    const std::string path(composition);
    const std::vector<AAFUnsupportedFeature> expected{
        {"omf-unsupported-0", Severity::renderAffecting,
         "OMF Transition treated as the spec-defined cut; transition effect itself is not "
         "reproduced",
         path + "/slot[75]/SEQU[73]/TRAN[68]"},
        {"omf-unsupported-1", Severity::renderAffecting,
         "OMF effect example:effect:Reverb is not rendered by TrellantOMFReader",
         path + "/slot[160]/SEQU[158]/component[2]/EFFE[153]"},
        {"omf-loss-2", Severity::informational,
         "audio clip dropped: the referenced Source Mob 00005E55-00000001-00000050 is not "
         "contained in the file",
         path + "/slot[160]/SCLP[157]"}};
    ASSERT_EQ(timeline().unsupportedFeatures.size(), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index) {
        const AAFUnsupportedFeature& feature = timeline().unsupportedFeatures[index];
        EXPECT_EQ(feature.id, expected[index].id);
        EXPECT_EQ(feature.severity, expected[index].severity);
        EXPECT_EQ(feature.description, expected[index].description);
        EXPECT_EQ(feature.objectPath, expected[index].objectPath);
    }
}

TEST(SessionExample, DiagnosticsTellTheStory) {
    const std::vector<std::string> expected{
        "OMF2/Bento 2.0, little-endian",
        "Composition Mob object 161 selected",
        "Track Dialog_L: 4 audio event(s), 1.925 s",
        "Track Dialog_R: 2 audio event(s), 1.750 s, pan 1.00",
        "Track Music_L: 1 audio event(s), 0.800 s, pan 0.00",
        "Track Music_R: 1 audio event(s), 0.800 s, pan 1.00",
        "Unresolved Source Mob 00005E55-00000001-00000050 for SCLP 157",
        "Track Atmo: 3 audio event(s), 2.300 s",
        "Resolved 11 event(s) to 4 audio essence(s)",
        "Composition length: 2.300 s"};
    EXPECT_EQ(sessionRun().diagnostics(), expected);
}

TEST(SessionExample, ProgressCountsEverySlot) {
    // Seven slots: 0.15 + 0.8 * i / 7.
    const std::vector<std::string> fractions{"0.15",
                                             "0.15",
                                             "0.2642857142857143",
                                             "0.37857142857142856",
                                             "0.4928571428571429",
                                             "0.6071428571428572",
                                             "0.7214285714285714",
                                             "0.8357142857142859"};
    std::string expected = "TRELLANT-AAF-PROGRESS {\"phase\":\"opening\",\"fraction\":0.05}\n";
    for (std::size_t index = 0; index < fractions.size(); ++index) {
        // Below 0.3 up to the second slot.
        expected += std::string("TRELLANT-AAF-PROGRESS {\"phase\":\"") +
                    (index < 3 ? "reconstructing" : "resolving") +
                    "\",\"fraction\":" + fractions[index] + "}\n";
    }
    expected +=
        "TRELLANT-AAF-PROGRESS {\"phase\":\"finishing\",\"fraction\":0.95}\n"
        "TRELLANT-AAF-PROGRESS {\"phase\":\"done\",\"fraction\":1}\n";
    EXPECT_EQ(sessionRun().run().errors, expected);
}

}  // namespace

}  // namespace trellant::testing
