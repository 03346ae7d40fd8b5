// SPDX-License-Identifier: Apache-2.0
#include <trellant/audio/sound_measures.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>

namespace trellant::audio {
namespace {

SoundMeasures sample() {
    SoundMeasures sound{.frames = 1'000,
                        .sampleRate = 44'100,
                        .bitDepth = 24,
                        .isFloatingPoint = false,
                        .peaks = {.framesPerPair = 400, .channels = 2, .pairs = {}},
                        .channels = {}};
    sound.peaks.pairs = {{-1, 1}, {-2, 2}, {-32'768, 32'767}, {0, 0}, {5, 6}, {-7, -6}};
    sound.channels.resize(2);
    sound.channels[0].silences = {{0, 10}, {20, 100}};
    sound.channels[0].shortestSilence = 8;
    sound.channels[0].fullScale = {{{130, 3}, {133, 4}}, 7};
    sound.channels[1].tones = {{{480, 520}}, 1};
    return sound;
}

TEST(PackedMeasures, ComeBackAsTheyWere) {
    EXPECT_EQ(unpackedMeasures(packedMeasures(sample())), sample());
    SoundMeasures empty{.sampleRate = 48'000, .bitDepth = 16, .channels = {}};
    empty.channels.resize(1);
    EXPECT_EQ(unpackedMeasures(packedMeasures(empty)), empty);
}

TEST(PackedMeasures, AreRefusedWhenShortOrLong) {
    const Bytes whole = packedMeasures(sample());
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(unpackedMeasures(ByteView(whole).first(length))) << length;
    }
    Bytes longer = whole;
    longer.push_back(std::byte{0});
    EXPECT_FALSE(unpackedMeasures(longer));
}

TEST(PackedMeasures, WithAFlippedByteAreRefusedOrSoundMeasures) {
    const Bytes whole = packedMeasures(sample());
    std::size_t refused = 0;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        Bytes changed = whole;
        changed[i] ^= std::byte{0xFF};
        const auto sound = unpackedMeasures(changed);
        refused += sound ? 0U : 1U;
        // What is taken holds what its type promises, so packing gives the same bytes again.
        EXPECT_TRUE(!sound || packedMeasures(*sound) == changed) << i;
    }
    EXPECT_GT(refused, 100U);
}

TEST(PackedMeasures, AreRefusedWithRangesThatMakeNoSense) {
    SoundMeasures sound = sample();
    sound.channels[0].silences = {{990, 11}};
    EXPECT_FALSE(unpackedMeasures(packedMeasures(sound)));
    sound.channels[0].silences = {{990, std::numeric_limits<std::uint64_t>::max()}};
    EXPECT_FALSE(unpackedMeasures(packedMeasures(sound)));
    sound.channels[0].silences = {{20, 5}, {24, 5}};
    EXPECT_FALSE(unpackedMeasures(packedMeasures(sound)));
    sound.channels[0].silences = {{20, 0}};
    EXPECT_FALSE(unpackedMeasures(packedMeasures(sound)));
    sound = sample();
    sound.channels[0].fullScale.total = 1;
    EXPECT_FALSE(unpackedMeasures(packedMeasures(sound)));
    sound = sample();
    sound.channels[1].shortestSilence = 0;
    EXPECT_FALSE(unpackedMeasures(packedMeasures(sound)));
    sound = sample();
    sound.peaks.framesPerPair = 300;
    EXPECT_FALSE(unpackedMeasures(packedMeasures(sound)));
}

}  // namespace
}  // namespace trellant::audio
