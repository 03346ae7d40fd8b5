// SPDX-License-Identifier: Apache-2.0
// Expected numbers are those that the bytes spell: 0x400000 of 24 bits is a half of 0x800000.
#include <trellant/audio/pcm.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace trellant::audio {
namespace {

constexpr PcmFormat eight{8, false};
constexpr PcmFormat sixteen{16, false};
constexpr PcmFormat twentyFour{24, false};
constexpr PcmFormat thirtyTwo{32, false};
constexpr PcmFormat singles{32, true};
constexpr PcmFormat doubles{64, true};

Bytes bytesOf(std::initializer_list<unsigned> values) {
    Bytes bytes;
    for (const unsigned value : values) {
        bytes.push_back(static_cast<std::byte>(value));
    }
    return bytes;
}

std::vector<double> decoded(const PcmFormat& format, const Bytes& bytes, std::size_t channels = 1,
                            std::size_t channel = 0) {
    std::vector<double> values(bytes.size() / format.bytes() / channels);
    decodePcm(format, bytes, channels, channel, values);
    return values;
}

struct Encoded {
    Bytes bytes;
    std::uint64_t cut = 0;
};

Encoded encoded(const PcmFormat& format, const std::vector<double>& values) {
    Encoded result;
    result.bytes.resize(values.size() * format.bytes());
    result.cut = encodePcm(format, values, result.bytes);
    return result;
}

TEST(Pcm, WholeNumbersArePartsOfFullScale) {
    EXPECT_EQ(decoded(eight, bytesOf({0x80, 0xC0, 0x00, 0xFF})),
              (std::vector<double>{0, 0.5, -1, 127.0 / 128}));
    EXPECT_EQ(decoded(sixteen, bytesOf({0x00, 0x40, 0x00, 0x80, 0xFF, 0xFF})),
              (std::vector<double>{0.5, -1, -1.0 / 32'768}));
    EXPECT_EQ(decoded(twentyFour, bytesOf({0x00, 0x00, 0x40, 0x01, 0x00, 0x80})),
              (std::vector<double>{0.5, -1 + 1.0 / 8'388'608}));
    EXPECT_EQ(decoded(thirtyTwo, bytesOf({0x00, 0x00, 0x00, 0x40, 0x01, 0x00, 0x00, 0x00})),
              (std::vector<double>{0.5, 1.0 / 2'147'483'648.0}));
}

TEST(Pcm, FloatingPointIsWhatItSays) {
    EXPECT_EQ(decoded(singles, bytesOf({0x00, 0x00, 0x80, 0x3F, 0x00, 0x00, 0x00, 0xC0})),
              (std::vector<double>{1, -2}));
    EXPECT_EQ(decoded(doubles, bytesOf({0, 0, 0, 0, 0, 0, 0xE0, 0x3F})),
              (std::vector<double>{0.5}));
}

TEST(Pcm, WhatIsNoNumberIsSilence) {
    // A quiet one, and infinity.
    EXPECT_EQ(decoded(singles, bytesOf({0x00, 0x00, 0xC0, 0x7F, 0x00, 0x00, 0x80, 0x7F})),
              (std::vector<double>{0, 0}));
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(encoded(sixteen, {none}).bytes, bytesOf({0, 0}));
    EXPECT_EQ(encoded(singles, {none}).bytes, bytesOf({0, 0, 0, 0}));
}

TEST(Pcm, TakesOneChannelOfSeveral) {
    const Bytes frames = bytesOf({0x00, 0x40, 0x00, 0x20, 0x00, 0xC0, 0x00, 0x10});
    EXPECT_EQ(decoded(sixteen, frames, 2, 0), (std::vector<double>{0.5, -0.5}));
    EXPECT_EQ(decoded(sixteen, frames, 2, 1), (std::vector<double>{0.25, 0.125}));
}

TEST(Pcm, EveryWholeNumberComesBack) {
    for (const PcmFormat& format : {eight, sixteen, twentyFour, thirtyTwo}) {
        Bytes bytes;
        for (std::uint32_t i = 0; i < 6'000; ++i) {
            // Steps through all parts of the range.
            bytes.push_back(static_cast<std::byte>((i * 2'654'435'761U) >> 24U));
        }
        const Encoded back = encoded(format, decoded(format, bytes));
        EXPECT_EQ(back.bytes, bytes) << format.bits;
        EXPECT_EQ(back.cut, 0U);
    }
}

/// Steps of 16 bits: halves go away from zero, and so does what is a hair short of one.
TEST(Pcm, RoundsHalvesAwayFromZero) {
    constexpr double step = 1.0 / 32'768;
    EXPECT_EQ(encoded(sixteen, {2.5 * step, -2.5 * step, 2.4 * step, -2.4 * step}).bytes,
              bytesOf({3, 0, 0xFD, 0xFF, 2, 0, 0xFE, 0xFF}));
    EXPECT_EQ(encoded(sixteen, {(2.5 - 1e-9) * step, (2.5 - 1e-5) * step}).bytes,
              bytesOf({3, 0, 2, 0}));
}

TEST(Pcm, CountsWhatIsCutOff) {
    const Encoded result = encoded(sixteen, {1, -1, 1.5, -1.5, 32'767.4 / 32'768, 1e300});
    EXPECT_EQ(result.bytes,
              bytesOf({0xFF, 0x7F, 0x00, 0x80, 0xFF, 0x7F, 0x00, 0x80, 0xFF, 0x7F, 0xFF, 0x7F}));
    // Full scale upwards is one step more than there is; downwards it is held.
    EXPECT_EQ(result.cut, 4U);
}

TEST(Pcm, FloatingPointIsNotCutOff) {
    const Encoded result = encoded(singles, {1.5, -2});
    EXPECT_EQ(result.bytes, bytesOf({0x00, 0x00, 0xC0, 0x3F, 0x00, 0x00, 0x00, 0xC0}));
    EXPECT_EQ(result.cut, 0U);
    // Beyond what 32 bits hold: the largest of them, 0x7F7FFFFF.
    EXPECT_EQ(encoded(singles, {1e300}).bytes, bytesOf({0xFF, 0xFF, 0x7F, 0x7F}));
}

TEST(Pcm, ZeroHasNoSignInFloatingPoint) {
    EXPECT_EQ(encoded(singles, {-0.0, -1e-300}).bytes, Bytes(8));
    EXPECT_EQ(encoded(doubles, {-0.0}).bytes, Bytes(8));
}

TEST(Pcm, SilenceOfEightBitsIsTheMiddle) {
    for (const PcmFormat& format : {eight, sixteen, twentyFour, thirtyTwo, singles, doubles}) {
        const Bytes silence = encoded(format, {0}).bytes;
        EXPECT_EQ(silence, Bytes(silence.size(), silentByte(format))) << format.bits;
    }
}

/// 0x12 of 8 bits lies 0x6E below the middle, which is 0x92 of two's complement.
TEST(Pcm, WidensWithZerosBelow) {
    const auto widened = [](const PcmFormat& from, const Bytes& bytes, std::size_t channels,
                            std::size_t channel, const PcmFormat& to) {
        Bytes result(bytes.size() / from.bytes() / channels * to.bytes());
        widenPcm(from, bytes, channels, channel, to, result);
        return result;
    };
    EXPECT_EQ(widened(eight, bytesOf({0x12, 0x80}), 1, 0, twentyFour),
              bytesOf({0, 0, 0x92, 0, 0, 0}));
    EXPECT_EQ(widened(eight, bytesOf({0x12, 0x80}), 2, 1, eight), bytesOf({0x80}));
    EXPECT_EQ(widened(sixteen, bytesOf({0x34, 0x12, 0xFE, 0xFF}), 1, 0, thirtyTwo),
              bytesOf({0, 0, 0x34, 0x12, 0, 0, 0xFE, 0xFF}));
    EXPECT_EQ(
        widened(twentyFour, bytesOf({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}), 2, 1, twentyFour),
        bytesOf({4, 5, 6, 10, 11, 12}));
    EXPECT_EQ(widened(thirtyTwo, bytesOf({1, 2, 3, 4}), 1, 0, thirtyTwo), bytesOf({1, 2, 3, 4}));
}

TEST(Pcm, UnpacksToTheUpperEnd) {
    const auto unpacked = [](const PcmFormat& format, const Bytes& bytes) {
        std::vector<std::int32_t> numbers(bytes.size() / format.bytes());
        unpackPcm(format, bytes, numbers);
        return numbers;
    };
    EXPECT_EQ(unpacked(eight, bytesOf({0x80, 0x81, 0x00})),
              (std::vector<std::int32_t>{0, 0x01000000, std::numeric_limits<std::int32_t>::min()}));
    EXPECT_EQ(unpacked(sixteen, bytesOf({0x34, 0x12, 0xFF, 0xFF})),
              (std::vector<std::int32_t>{0x12340000, -0x10000}));
    EXPECT_EQ(unpacked(twentyFour, bytesOf({0x56, 0x34, 0x12, 0xFE, 0xFF, 0xFF})),
              (std::vector<std::int32_t>{0x12345600, -0x200}));
    EXPECT_EQ(unpacked(thirtyTwo, bytesOf({0x78, 0x56, 0x34, 0x12})),
              (std::vector<std::int32_t>{0x12345678}));
    EXPECT_TRUE(unpacked(sixteen, {}).empty());
}

TEST(Pcm, WidensAsTheWayThroughFloatingPointDoes) {
    const std::vector<PcmFormat> formats{eight, sixteen, twentyFour, thirtyTwo};
    for (const PcmFormat& from : formats) {
        Bytes bytes;
        for (std::uint32_t i = 0; i < 1'200; ++i) {
            bytes.push_back(static_cast<std::byte>((i * 2'654'435'761U) >> 24U));
        }
        const std::vector<double> values = decoded(from, bytes, 3, 2);
        for (const PcmFormat& to : formats) {
            EXPECT_EQ(isWidening(from, to), from.bits <= to.bits);
            if (isWidening(from, to)) {
                Bytes result(values.size() * to.bytes());
                widenPcm(from, bytes, 3, 2, to, result);
                EXPECT_EQ(result, encoded(to, values).bytes) << from.bits << " " << to.bits;
            }
        }
        EXPECT_FALSE(isWidening(from, singles));
        EXPECT_FALSE(isWidening(singles, from));
    }
}

TEST(Pcm, TellsFormatsThatThereAre) {
    EXPECT_TRUE(isPcmFormat(twentyFour));
    EXPECT_TRUE(isPcmFormat(doubles));
    EXPECT_FALSE(isPcmFormat({20, false}));
    EXPECT_FALSE(isPcmFormat({24, true}));
}

}  // namespace
}  // namespace trellant::audio
