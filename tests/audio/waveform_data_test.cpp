// SPDX-License-Identifier: Apache-2.0
// Expected bytes are written out by hand from the table in waveform_data.h.
#include <trellant/audio/waveform_data.h>

#include <gtest/gtest.h>

#include <initializer_list>

namespace trellant::audio {
namespace {

Bytes bytesOf(std::initializer_list<unsigned> values) {
    Bytes bytes;
    for (const unsigned value : values) {
        bytes.push_back(static_cast<std::byte>(value));
    }
    return bytes;
}

SoundMeasures stereo() {
    SoundMeasures sound;
    sound.sampleRate = 48'000;
    sound.peaks = {.framesPerPair = 256, .channels = 2, .pairs = {{-1, 255}, {-32'768, 32'767}}};
    return sound;
}

TEST(WaveformData, OfSixteenBits) {
    // 48,000 is 0xBB80.
    EXPECT_EQ(waveformData(stereo(), PeakBits::sixteen),
              bytesOf({2, 0, 0, 0, 0, 0, 0, 0, 0x80, 0xBB, 0,    0,    0, 1,    0,    0,
                       1, 0, 0, 0, 2, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0x00, 0, 0x80, 0xFF, 0x7F}));
}

TEST(WaveformData, OfEightBitsRoundsDown) {
    // -1/256 is -1 rounded down, 255/256 is 0, the ends are -128 and 127.
    EXPECT_EQ(waveformData(stereo(), PeakBits::eight),
              bytesOf({2, 0, 0, 0, 1, 0, 0, 0, 0x80, 0xBB, 0,    0,    0,    1,
                       0, 0, 1, 0, 0, 0, 2, 0, 0,    0,    0xFF, 0x00, 0x80, 0x7F}));
}

TEST(WaveformData, BitsAreNumbersOnACommandLine) {
    EXPECT_EQ(static_cast<int>(PeakBits::eight), 8);
    EXPECT_EQ(static_cast<int>(PeakBits::sixteen), 16);
}

TEST(WaveformData, OfNoSoundIsAHeader) {
    SoundMeasures sound;
    sound.sampleRate = 1;
    EXPECT_EQ(waveformData(sound, PeakBits::eight),
              bytesOf({2, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0}));
}

}  // namespace
}  // namespace trellant::audio
