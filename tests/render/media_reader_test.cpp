// SPDX-License-Identifier: Apache-2.0
#include "media_reader.h"

#include "rendered.h"

#include <trellant/io/errors.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <trellant_testing/byte_writer.h>
#include <unistd.h>

namespace trellant::testing {
namespace {

constexpr audio::PcmFormat sixteen{16, false};
constexpr audio::PcmFormat twentyFour{24, false};

class MediaReading : public ::testing::Test, public RenderedPlan {
  protected:
    /// In steps of 16 bits.
    [[nodiscard]] std::vector<double> read(std::size_t media, std::size_t channel,
                                           std::int64_t first, std::size_t count) const {
        render::MediaReader reader(played);
        std::vector<double> values(count, 9);
        reader.read(media, channel, first, values);
        for (double& value : values) {
            value *= 32'768;
        }
        return values;
    }
    [[nodiscard]] Bytes copied(std::size_t media, std::size_t channel, std::int64_t first,
                               const audio::PcmFormat& to, std::size_t count) const {
        render::MediaReader reader(played);
        Bytes bytes(count * to.bytes(), std::byte{9});
        EXPECT_TRUE(reader.canCopy(media, to));
        reader.copy(media, channel, first, to, bytes);
        return bytes;
    }
};

TEST_F(MediaReading, WhatTheFileDoesNotHaveIsSilent) {
    const std::size_t media = addMedia({1, 2, 3});
    EXPECT_EQ(read(media, 0, -2, 7), (std::vector<double>{0, 0, 1, 2, 3, 0, 0}));
    EXPECT_EQ(read(media, 0, 1, 1), (std::vector<double>{2}));
    EXPECT_EQ(read(media, 0, -5, 2), (std::vector<double>{0, 0}));
    EXPECT_EQ(read(media, 0, 3, 2), (std::vector<double>{0, 0}));
    EXPECT_EQ(read(media, 1, 0, 2), (std::vector<double>{0, 0}));
    EXPECT_EQ(read(addMissingMedia(), 0, 0, 2), (std::vector<double>{0, 0}));
}

TEST_F(MediaReading, CopiesBytesAsTheyLie) {
    const std::size_t media = addMedia({1, -2, 0x1234});
    EXPECT_EQ(copied(media, 0, -1, sixteen, 5), hex("0000 0100 FEFF 3412 0000"));
    EXPECT_EQ(copied(media, 0, 7, sixteen, 2), hex("0000 0000"));
}

/// A number of 16 bits is 256 times as large among those of 24.
TEST_F(MediaReading, CopiesIntoMoreBitsWithZerosBelow) {
    const std::size_t media = addMedia({1, 10, -2, 20, 3, 0x1234}, 2);
    EXPECT_EQ(copied(media, 0, 0, twentyFour, 4), hex("000100 00FEFF 000300 000000"));
    EXPECT_EQ(copied(media, 1, 1, twentyFour, 2), hex("001400 003412"));
    EXPECT_EQ(copied(media, 1, 0, sixteen, 3), hex("0A00 1400 3412"));
}

/// More than is read at once: 256 KiB are 65,536 frames of two channels.
TEST_F(MediaReading, GoesOnWhereAPieceEnds) {
    std::vector<std::int16_t> samples(280'000);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<std::int16_t>(i / 2 % 30'000);
    }
    const std::size_t media = addMedia(samples, 2);
    const std::vector<double> values = read(media, 1, 1, 139'999);
    const Bytes bytes = copied(media, 1, 1, twentyFour, 139'999);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t expected = (i + 1) % 30'000;
        ASSERT_EQ(values[i], static_cast<double>(expected)) << i;
        ASSERT_EQ(std::to_integer<std::size_t>(bytes[3 * i + 1]) +
                      std::to_integer<std::size_t>(bytes[3 * i + 2]) * 256,
                  expected)
            << i;
    }
}

TEST_F(MediaReading, AFileThatBecameShorterIsSilentThere) {
    const std::size_t media = addMedia({1, 2, 3});
    std::filesystem::resize_file(played[media]->path, played[media]->dataOffset + 3);
    EXPECT_EQ(read(media, 0, 0, 3), (std::vector<double>{1, 2, 0}));
    // Silence of 8 bits is not zero.
    played[media]->bitsOfSample = 8;
    played[media]->dataByteCount = 5;
    EXPECT_EQ(copied(media, 0, 0, {8, false}, 6), hex("01 00 02 80 80 80"));
}

TEST_F(MediaReading, AFileThatWentIsAFailure) {
    const std::size_t media = addMedia({1, 2, 3});
    std::filesystem::remove(played[media]->path);
    EXPECT_THROW(static_cast<void>(read(media, 0, 0, 3)), FileSystemError);
}

/// Sixty-four are held open.
TEST_F(MediaReading, ReadsMoreFilesThanItHoldsOpen) {
    for (std::int16_t i = 0; i < 70; ++i) {
        addMedia({i});
    }
    render::MediaReader reader(played);
    for (std::size_t round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < 70; ++i) {
            std::vector<double> value(1);
            reader.read(i, 0, 0, value);
            EXPECT_EQ(value[0] * 32'768, static_cast<double>(i));
        }
    }
}

TEST_F(MediaReading, OnlyWholeNumbersThatHaveRoomAreCopied) {
    const std::size_t media = addMedia({1});
    render::MediaReader reader(played);
    EXPECT_TRUE(reader.canCopy(media, sixteen));
    EXPECT_FALSE(reader.canCopy(media, {8, false}));
    EXPECT_FALSE(reader.canCopy(media, {32, true}));
}

TEST(MediaFacts, FramesAreWhole) {
    sessions::WaveFile file{.dataByteCount = 17, .bitsOfSample = 16, .channels = 2};
    EXPECT_EQ(render::framesOf(file), 4);
    file.channels = 0;
    EXPECT_EQ(render::framesOf(file), 0);
    file = {.dataByteCount = 17, .bitsOfSample = 20, .channels = 2};
    EXPECT_EQ(render::framesOf(file), 0);
}

}  // namespace
}  // namespace trellant::testing
