// SPDX-License-Identifier: Apache-2.0
// The length of an audio file by its header, and what is no audio file.
#include "extract_fixture.h"

#include <trellant/handoff/audio_facts.h>

#include <gmock/gmock.h>

#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {
namespace {

class AudioFactsTest : public ::testing::Test {
  protected:
    std::optional<AudioFacts> facts(const Bytes& bytes) {
        return audioFacts(writeFile(folder_.file("a"), bytes));
    }
    std::optional<std::uint64_t> frames(const Bytes& bytes) {
        const auto found = facts(bytes);
        EXPECT_TRUE(found.has_value());
        return found ? found->frames : std::nullopt;
    }

    TemporaryDirectory folder_;
};

TEST_F(AudioFactsTest, FramesOfWaveAreBytesByBytesOfAFrame) {
    // Both 60 bytes of samples. The builder writes frames of channels times whole bytes.
    EXPECT_EQ(frames(waveImage({.channels = 2, .bitsPerSample = 16, .samples = Bytes(60)})), 15U);
    EXPECT_EQ(frames(waveImage({.channels = 1, .bitsPerSample = 24, .samples = Bytes(60)})), 20U);
}

TEST_F(AudioFactsTest, FormatIsTheProbes) {
    const auto found = facts(waveImage({.channels = 2, .sampleRate = 44'100, .bitsPerSample = 16}));
    EXPECT_EQ(found, (AudioFacts{.format = {.sampleRate = AAFRational(44'100),
                                            .channels = 2,
                                            .bitDepth = 16,
                                            .codec = "PCM"},
                                 .frames = 0}));
}

TEST_F(AudioFactsTest, SizeBeyondTheEndOfTheFileCountsToTheEnd) {
    Bytes image = waveImage({.samples = Bytes(60)});
    image.erase(image.end() - 20, image.end());
    EXPECT_EQ(frames(image), 20U);
}

TEST_F(AudioFactsTest, LargeFormKeepsItsSizeInAChunkOfItsOwn) {
    const Bytes sizes =
        ByteWriter(OMFByteOrder::little).u64(1'000).u64(40).u64(20).u32(0).written();
    Bytes image =
        waveImage({.form = "RF64", .samples = Bytes(60), .leadingChunks = {{"ds64", sizes}}});
    const std::size_t size = image.size() - 60 - 4;
    for (std::size_t index = size; index < size + 4; ++index) {
        image[index] = std::byte{0xFF};
    }
    EXPECT_EQ(frames(image), 20U);
}

TEST_F(AudioFactsTest, CompressedWaveDoesNotTellItsLength) {
    EXPECT_EQ(frames(waveImage({.formatTag = 85, .samples = Bytes(60)})), std::nullopt);
}

TEST_F(AudioFactsTest, FramesOfAiffStandInItsHeader) {
    EXPECT_EQ(frames(aiffImage({.channels = 2, .samples = Bytes(60)})), 15U);
    EXPECT_EQ(frames(aiffImage({.formType = "AIFC", .samples = Bytes(60)})), 30U);
}

TEST_F(AudioFactsTest, WhatIsNoAudioFileHasNoFacts) {
    EXPECT_EQ(facts({}), std::nullopt);
    EXPECT_EQ(facts(bytesOf("RIFF of something else")), std::nullopt);
    EXPECT_EQ(audioFacts(folder_.file("nothing here")), std::nullopt);
    EXPECT_EQ(audioFacts(folder_.path().string()), std::nullopt);
}

TEST_F(AudioFactsTest, CutAnywhereAFileHasFactsOrNone) {
    const Bytes whole = waveImage({.samples = Bytes(6)});
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const auto found = facts(Bytes(whole.begin(), whole.begin() + static_cast<long>(size)));
        EXPECT_TRUE(!found || !found->frames || *found->frames < 3) << size;
    }
}

TEST(Seconds, NeedALengthAndARateAboveZero) {
    AudioFacts facts;
    facts.frames = 24'000;
    EXPECT_EQ(seconds(facts), std::nullopt);
    facts.format.sampleRate = AAFRational(0);
    EXPECT_EQ(seconds(facts), std::nullopt);
    facts.format.sampleRate = AAFRational(48'000);
    EXPECT_EQ(seconds(facts), AAFRational(1, 2));
    facts.frames.reset();
    EXPECT_EQ(seconds(facts), std::nullopt);
    facts.frames = 0x8000'0000'0000'0000U;
    EXPECT_EQ(seconds(facts), std::nullopt);
}

}  // namespace
}  // namespace trellant::testing
