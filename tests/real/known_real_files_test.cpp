// SPDX-License-Identifier: Apache-2.0
// Two known files, value by value, as their objects say when one reads them by hand. Lengths there
// are in samples of the tracks' edit rates.
#include "real_files.h"

#include <gtest/gtest.h>

#include <trellant_testing/expected_event.h>

namespace trellant::testing {

namespace {

using Diagnostics = std::vector<std::string>;

AAFTimecodeRate wholeRate(std::int64_t framesPerSecond) {
    return AAFTimecodeRate(AAFRational(framesPerSecond), framesPerSecond, false);
}

void expectClockFromMidnight(const AAFTimeline& timeline, std::int64_t framesPerSecond) {
    const AAFTimecodeRate rate = wholeRate(framesPerSecond);
    EXPECT_EQ(timeline.clock.editRate, AAFRational(framesPerSecond));
    EXPECT_EQ(timeline.clock.timecodeRate, rate);
    EXPECT_EQ(timeline.clock.timelineZero, AAFTimecodeAddress(0, 0, 0, 0, rate));
    EXPECT_EQ(timeline.explicitProgramStart, AAFTimecodeAddress(0, 0, 0, 0, rate));
    EXPECT_EQ(timeline.hasNativeTimecode, true);
    EXPECT_FALSE(timeline.sourceApplication.has_value());
}

struct ExpectedMedia {
    std::string uid;
    std::string name;
    std::int64_t sampleRate;
    std::int64_t bits;
    /// The extracted file, and where its bytes lie in the interchange file.
    std::string file;
    std::size_t offset;
    std::size_t length;
};

void expectMedia(const std::string& path, const RealFileRun& extracted,
                 const std::vector<ExpectedMedia>& expected) {
    const auto timeline = extracted.result().timeline;
    const Bytes whole = readFile(path);
    ASSERT_EQ(timeline.essences.size(), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index) {
        const AAFSourceEssence& essence = timeline.essences[index];
        const ExpectedMedia& media = expected[index];
        SCOPED_TRACE(media.name);
        EXPECT_EQ(essence.id, "omf-essence-" + media.uid);
        EXPECT_EQ(essence.mobID, media.uid);
        EXPECT_EQ(essence.sourceName, media.name);
        EXPECT_EQ(essence.sampleRate, AAFRational(media.sampleRate));
        EXPECT_EQ(essence.bitDepth, media.bits);
        EXPECT_EQ(essence.channelCount, 1);
        EXPECT_EQ(essence.codec, "NONE");
        EXPECT_TRUE(essence.embedded);
        EXPECT_FALSE(essence.originalPath.has_value());
        ASSERT_LE(media.length, whole.size() - media.offset);
        const auto start = whole.begin() + static_cast<std::ptrdiff_t>(media.offset);
        EXPECT_TRUE(readFile(extracted.workFile(media.file)) ==
                    Bytes(start, start + static_cast<std::ptrdiff_t>(media.length)));
    }
}

TEST(BigEndian25Fps, HasOneTrackWithOneClipTwoSecondsIntoItsSource) {
    const auto path = realFile("big-endian-25fps.omf");
    if (!path) {
        GTEST_SKIP() << "the file is not there";
    }
    const RealFileRun inspected("inspect", *path);
    ASSERT_EQ(inspected.run().status, 0) << inspected.run().errors;
    const auto result = inspected.result();
    const AAFTimeline& timeline = result.timeline;
    EXPECT_EQ(timeline.compositionName, "ProTools9-Sample02");
    expectClockFromMidnight(timeline, 25);
    // The name begins with a blank; no pan, and no side in the name.
    expectTracks(timeline, {{.index = 0, .name = " Audio 1"}});
    expectEvents(timeline, {{.track = " Audio 1",
                             .source = "Audio 1#01",
                             .start = AAFRational(0),
                             .duration = AAFRational(382'751, 44'100),
                             .sourceStartSample = 88'200}});
    EXPECT_EQ(timeline.events.front().id, "omf-event-65820-0");
    EXPECT_EQ(timeline.events.front().trackID, "omf-track-65815");
    EXPECT_EQ(timeline.compositionLength, AAFRational(382'751, 44'100));
    EXPECT_TRUE(timeline.unsupportedFeatures.empty());
    EXPECT_EQ(
        result.diagnostics,
        (Diagnostics{"OMF2/Bento 2.0, big-endian", "Composition Mob object 65812 selected",
                     "Track  Audio 1: 1 audio event(s), 8.679 s",
                     "Resolved 1 event(s) to 1 audio essence(s)", "Composition length: 8.679 s"}));
}

TEST(BigEndian25Fps, CarriesOneAifc) {
    const auto path = realFile("big-endian-25fps.omf");
    if (!path) {
        GTEST_SKIP() << "the file is not there";
    }
    const RealFileRun extracted("extractAndInspect", *path);
    ASSERT_EQ(extracted.run().status, 0) << extracted.run().errors;
    expectMedia(*path, extracted,
                {{"499602D2-DEDA7EFC-00010C63", "Audio 1#01", 44'100, 16, "Audio 1_01.aifc", 1'121,
                  970'274}});
}

TEST(EffectsAndPans, HasThreePairsOfTracksPannedToTheSides) {
    const auto path = realFile("effects-and-pans.omf");
    if (!path) {
        GTEST_SKIP() << "the file is not there";
    }
    const RealFileRun inspected("inspect", *path);
    ASSERT_EQ(inspected.run().status, 0) << inspected.run().errors;
    const AAFTimeline timeline = inspected.result().timeline;
    EXPECT_EQ(timeline.compositionName, "Untitled Session 1.sesx");
    // The timecode slot has the rate 3000/100.
    expectClockFromMidnight(timeline, 30);
    expectTracks(timeline, {{.index = 1, .name = "Track 1_L", .pan = 0},
                            {.index = 2, .name = "Track 1_R", .pan = 1},
                            {.index = 3, .name = "Track 2_L", .pan = 0},
                            {.index = 4, .name = "Track 2_R", .pan = 1},
                            {.index = 5, .name = "Track 3_L", .pan = 0},
                            {.index = 6, .name = "Track 3_R", .pan = 1}});
    const auto clip = [](std::string track, AAFChannelRole role, std::string source,
                         std::int64_t start, std::int64_t length) {
        return ExpectedEvent{.track = std::move(track),
                             .source = std::move(source),
                             .start = AAFRational(start, 48'000),
                             .duration = AAFRational(length, 48'000),
                             .role = role};
    };
    using Role = AAFChannelRole;
    expectEvents(timeline,
                 {clip("Track 1_L", Role::left, "BASEBALL480001111.aif", 263'919, 5'815),
                  clip("Track 1_R", Role::right, "BASEBALL480001121.aif", 263'919, 5'815),
                  clip("Track 2_L", Role::left, "BOOTCAMP480001111.aif", 175'135, 129'844),
                  clip("Track 2_R", Role::right, "BOOTCAMP480001121.aif", 175'135, 129'844),
                  clip("Track 3_L", Role::left, "SPLASH480001111.aif", 68'108, 128'333),
                  clip("Track 3_R", Role::right, "SPLASH480001121.aif", 68'108, 128'333)});
    EXPECT_EQ(timeline.compositionLength, AAFRational(304'979, 48'000));
    EXPECT_TRUE(timeline.unsupportedFeatures.empty());
}

TEST(EffectsAndPans, DiagnosticsTellTheStory) {
    const auto path = realFile("effects-and-pans.omf");
    if (!path) {
        GTEST_SKIP() << "the file is not there";
    }
    const RealFileRun inspected("inspect", *path);
    ASSERT_EQ(inspected.run().status, 0) << inspected.run().errors;
    EXPECT_EQ(
        inspected.result().diagnostics,
        (Diagnostics{"OMF2/Bento 2.0, little-endian", "Composition Mob object 65919 selected",
                     "Track Track 1_L: 1 audio event(s), 6.354 s, pan 0.00",
                     "Track Track 1_R: 1 audio event(s), 6.354 s, pan 1.00",
                     "Track Track 2_L: 1 audio event(s), 6.354 s, pan 0.00",
                     "Track Track 2_R: 1 audio event(s), 6.354 s, pan 1.00",
                     "Track Track 3_L: 1 audio event(s), 6.354 s, pan 0.00",
                     "Track Track 3_R: 1 audio event(s), 6.354 s, pan 1.00",
                     "Resolved 6 event(s) to 6 audio essence(s)", "Composition length: 6.354 s"}));
}

TEST(EffectsAndPans, CarriesSixAifcOf24Bits) {
    const auto path = realFile("effects-and-pans.omf");
    if (!path) {
        GTEST_SKIP() << "the file is not there";
    }
    const RealFileRun extracted("extractAndInspect", *path);
    ASSERT_EQ(extracted.run().status, 0) << extracted.run().errors;
    const auto media = [](std::string_view lastWord, const std::string& name, std::size_t offset,
                          std::size_t length) {
        return ExpectedMedia{"00000227-62B5344A-" + std::string(lastWord),
                             name + ".aif",
                             48'000,
                             24,
                             name + ".aifc",
                             offset,
                             length};
    };
    expectMedia(*path, extracted,
                {media("003774D3", "BASEBALL480001111", 1'225, 17'520),
                 media("003774D5", "BASEBALL480001121", 19'151, 17'520),
                 media("003774D7", "BOOTCAMP480001111", 37'077, 389'606),
                 media("003774D9", "BOOTCAMP480001121", 427'089, 389'606),
                 media("003774DB", "SPLASH480001111", 817'095, 385'074),
                 media("003774DD", "SPLASH480001121", 1'202'569, 385'074)});
}

}  // namespace

}  // namespace trellant::testing
