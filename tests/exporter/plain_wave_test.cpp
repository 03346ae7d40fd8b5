// SPDX-License-Identifier: Apache-2.0
// Which files need no conversion, and where their samples lie.
#include <trellant/exporter/plain_wave.h>

#include <gtest/gtest.h>

#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::testing {
namespace {

class PlainWave : public ::testing::Test {
  protected:
    std::optional<sessions::WaveFile> waveIn(const Bytes& bytes) {
        return plainWave(writeFile(folder_.file("a.wav"), bytes));
    }

    TemporaryDirectory folder_;
};

TEST_F(PlainWave, SamplesLieBehindTheUsualHead) {
    const Bytes file = waveImage({.samples = hex("0100 0200 0300")});
    const auto wave = waveIn(file);
    ASSERT_TRUE(wave.has_value());
    // RIFF, size, WAVE: 12; "fmt " with 16 bytes: 24; the head of "data": 8.
    EXPECT_EQ(wave->dataOffset, 44U);
    EXPECT_EQ(wave->dataByteCount, 6U);
    EXPECT_EQ(wave->byteCount, file.size());
    EXPECT_EQ(wave->path, folder_.file("a.wav"));
}

TEST_F(PlainWave, ChunksInFrontOfTheFormatArePassedOver) {
    const auto wave =
        waveIn(waveImage({.samples = hex("0100"), .leadingChunks = {{"bext", hex("010203")}}}));
    ASSERT_TRUE(wave.has_value());
    // The odd chunk is padded: 8 + 3 + 1 more than usual.
    EXPECT_EQ(wave->dataOffset, 56U);
}

TEST_F(PlainWave, FloatingPointIsPlain) {
    const auto wave = waveIn(waveImage(
        {.formatTag = 3, .channels = 2, .bitsPerSample = 32, .samples = hex("0000803F 0000803F")}));
    ASSERT_TRUE(wave.has_value());
    EXPECT_TRUE(wave->isFloatingPoint);
    EXPECT_EQ(wave->bitsOfSample, 32U);
    EXPECT_EQ(wave->channels, 2U);
}

TEST_F(PlainWave, SamplesBeyondTheEndOfTheFileAreNotThere) {
    Bytes file = waveImage({.samples = hex("0100 0200 0300")});
    file.resize(file.size() - 2);
    const auto wave = waveIn(file);
    ASSERT_TRUE(wave.has_value());
    EXPECT_EQ(wave->dataByteCount, 4U);
}

TEST_F(PlainWave, WhatToolsReadOtherwiseIsNotPlain) {
    EXPECT_FALSE(waveIn(waveImage({.formatTag = 0xFFFE, .samples = hex("0100")})));
    EXPECT_FALSE(waveIn(waveImage({.formatTag = 17, .bitsPerSample = 4, .samples = hex("0100")})));
    EXPECT_FALSE(waveIn(waveImage({.bitsPerSample = 20, .samples = hex("010000")})));
    EXPECT_FALSE(waveIn(waveImage({.formatTag = 3, .bitsPerSample = 16, .samples = hex("0100")})));
    EXPECT_FALSE(waveIn(aiffImage({.samples = hex("0001")})));
}

TEST_F(PlainWave, SaysTheBitsOfASample) {
    const auto wave = waveIn(waveImage({.bitsPerSample = 24, .samples = hex("010000")}));
    ASSERT_TRUE(wave.has_value());
    EXPECT_EQ(wave->bitsOfSample, 24U);
}

TEST_F(PlainWave, TheLargeFormIsNotPlainWhereTheUsualOneWouldDo) {
    Bytes file = waveImage({.samples = hex("0100 0200")});
    ASSERT_TRUE(waveIn(file).has_value());
    // "RIFF" becomes "RF64".
    file[1] = std::byte{'F'};
    file[2] = std::byte{'6'};
    file[3] = std::byte{'4'};
    EXPECT_FALSE(waveIn(file).has_value());
}

TEST_F(PlainWave, DamagedFilesAreNoWave) {
    const Bytes file = waveImage({.samples = hex("0100")});
    for (std::size_t size = 0; size < 44; ++size) {
        EXPECT_FALSE(waveIn(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size))))
            << size;
    }
    EXPECT_FALSE(plainWave(folder_.file("not there")));
    EXPECT_FALSE(plainWave(folder_.path()));
}

TEST_F(PlainWave, SamplesInFrontOfTheirFormatAreNotPlain) {
    EXPECT_FALSE(
        waveIn(waveImage({.samples = hex("0100"), .leadingChunks = {{"data", hex("0100")}}})));
}

}  // namespace
}  // namespace trellant::testing
