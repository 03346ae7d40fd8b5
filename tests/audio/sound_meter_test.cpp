// SPDX-License-Identifier: Apache-2.0
// Samples are whole numbers at the upper end of 32 bits: one of 16 bits stands at v * 65,536, so
// that its peak is v itself; of 8 bits at v * 2^24 with a peak of v * 256.
#include <trellant/audio/sound_meter.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace trellant::audio {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::vector<std::int32_t> ofBits(unsigned bits, const std::vector<std::int32_t>& samples) {
    std::vector<std::int32_t> shifted;
    for (const std::int32_t sample : samples) {
        shifted.push_back(
            static_cast<std::int32_t>(static_cast<std::uint32_t>(sample) << (32U - bits)));
    }
    return shifted;
}

/// Fed `piece` samples at a time.
template <class Sample>
SoundMeasures measured(const SoundFormat& format, std::uint64_t framesPerPair,
                       const std::vector<Sample>& samples, std::size_t piece = 1'000'000) {
    SoundMeter meter(format, framesPerPair);
    for (std::size_t i = 0; i < samples.size(); i += piece) {
        meter.add(std::span(samples).subspan(i, std::min(piece, samples.size() - i)));
    }
    return meter.taken();
}

SoundMeasures mono16(const std::vector<std::int32_t>& samples, std::size_t piece = 1'000'000) {
    return measured({}, 4, ofBits(16, samples), piece);
}

TEST(Peaks, AreTheLowestAndHighestOfEachPair) {
    const auto sound = mono16({1, -5, 3, 2, 7, 7, 8, 9, -1});
    EXPECT_EQ(sound.frames, 9U);
    EXPECT_THAT(sound.peaks.pairs, ElementsAre(PeakPair{-5, 3}, PeakPair{7, 9}, PeakPair{-1, -1}));
    EXPECT_EQ(sound.peaks.length(), 3U);
}

TEST(Peaks, DoNotDependOnHowTheSoundComes) {
    std::vector<std::int32_t> samples;
    for (std::int32_t i = 0; i < 1'000; ++i) {
        samples.push_back(i * 7'919 % 65'536 - 32'768);
    }
    const auto atOnce = mono16(samples);
    for (const std::size_t piece : {1U, 3U, 4U, 257U}) {
        EXPECT_EQ(mono16(samples, piece), atOnce) << piece;
    }
}

TEST(Peaks, KeepChannelsApart) {
    const auto sound =
        measured({.channels = 2}, 2, ofBits(16, {1, -1, 2, -2, 3, -3, 4, -4, 5, -5}));
    EXPECT_EQ(sound.frames, 5U);
    EXPECT_THAT(sound.peaks.pairs, ElementsAre(PeakPair{1, 2}, PeakPair{-2, -1}, PeakPair{3, 4},
                                               PeakPair{-4, -3}, PeakPair{5, 5}, PeakPair{-5, -5}));
    EXPECT_EQ(sound.peaks.at(1, 1), (PeakPair{-4, -3}));
}

TEST(Peaks, OfHalfAFrameAreAnError) {
    PeakMeter meter(2, 4, [](std::span<const PeakPair>) {});
    const std::vector<std::int32_t> samples(3);
    EXPECT_DEATH(meter.add(samples), "precondition failed: frames are whole");
    EXPECT_DEATH(PeakMeter(0, 4, [](std::span<const PeakPair>) {}),
                 "precondition failed: an outline needs channels and frames");
}

TEST(Peaks, RoundDownAtEachDepth) {
    // 8 bits: times 256. 24 bits: by 256, so -1 is -1 and 255 is 0. 32 bits: by 65,536.
    EXPECT_THAT(measured({.bitDepth = 8}, 4, ofBits(8, {-128, 127})).peaks.pairs,
                ElementsAre(PeakPair{-32'768, 32'512}));
    EXPECT_THAT(measured({.bitDepth = 24}, 4, ofBits(24, {-1, 255})).peaks.pairs,
                ElementsAre(PeakPair{-1, 0}));
    EXPECT_THAT(measured({.bitDepth = 32}, 4, ofBits(32, {-65'537, 131'071})).peaks.pairs,
                ElementsAre(PeakPair{-2, 1}));
}

TEST(Peaks, OfFloatingPointEndAtFullScale) {
    const SoundFormat format{.bitDepth = 32, .isFloatingPoint = true};
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_THAT(measured<double>(format, 2, {0.5, -0.25, 1.5, -7, infinity, -infinity}).peaks.pairs,
                ElementsAre(PeakPair{-8'192, 16'384}, PeakPair{-32'768, 32'767},
                            PeakPair{-32'768, 32'767}));
}

TEST(Peaks, TakeForNothingWhatIsNoNumber) {
    const SoundFormat format{.bitDepth = 32, .isFloatingPoint = true};
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THAT(measured<double>(format, 3, {none, 0.5, none}).peaks.pairs,
                ElementsAre(PeakPair{0, 16'384}));
}

TEST(Silence, IsListedRunByRun) {
    const auto sound = mono16({0, 0, 1, 0, 5, 0, 0, 0});
    EXPECT_THAT(sound.channels[0].silences,
                ElementsAre(FrameRange{0, 2}, FrameRange{3, 1}, FrameRange{5, 3}));
    EXPECT_EQ(sound.channels[0].shortestSilence, 1U);
}

TEST(Silence, OfARangeIsKnownExactly) {
    // The one sound is sample 256, where many would begin another block.
    std::vector<std::int32_t> samples(512, 0);
    samples[256] = 1;
    const auto sound = mono16(samples);
    EXPECT_EQ(isSilent(sound, 0, {0, 256}), Answer::yes);
    EXPECT_EQ(isSilent(sound, 0, {0, 257}), Answer::no);
    EXPECT_EQ(isSilent(sound, 0, {256, 1}), Answer::no);
    EXPECT_EQ(isSilent(sound, 0, {257, 255}), Answer::yes);
    EXPECT_EQ(isSilent(sound, 0, {257, std::numeric_limits<std::uint64_t>::max()}), Answer::yes);
    EXPECT_EQ(isSilent(sound, 0, {600, 5}), Answer::yes);
    EXPECT_EQ(isSilent(sound, 0, {256, 0}), Answer::yes);
}

TEST(Silence, OfManyRunsKeepsTheLongest) {
    // 5,000 single zeros, then 10 in a row: more runs than are listed, so that those of one frame
    // go, and an answer about a single frame is none.
    std::vector<std::int32_t> samples;
    for (int i = 0; i < 5'000; ++i) {
        samples.insert(samples.end(), {0, 1});
    }
    samples.insert(samples.end(), 10, 0);
    const auto sound = mono16(samples);
    EXPECT_EQ(sound.channels[0].shortestSilence, 2U);
    EXPECT_THAT(sound.channels[0].silences, ElementsAre(FrameRange{10'000, 10}));
    EXPECT_EQ(isSilent(sound, 0, {0, 1}), Answer::unknown);
    EXPECT_EQ(isSilent(sound, 0, {0, 2}), Answer::no);
    EXPECT_EQ(isSilent(sound, 0, {10'002, 3}), Answer::yes);
}

TEST(FullScale, TakesThreeSamplesAtOneEnd) {
    const auto sound = mono16({32'767, 32'767, 0, 32'767, 32'767, 32'767, -32'768, -32'767, -32'768,
                               -32'768, 32'766, 32'767, -32'768, 32'767});
    EXPECT_THAT(sound.channels[0].fullScale.ranges,
                ElementsAre(FrameRange{3, 3}, FrameRange{6, 4}));
    EXPECT_EQ(sound.channels[0].fullScale.total, 2U);
}

TEST(FullScale, OfEachDepthIsItsOwnLargestNumber) {
    for (const unsigned bits : {8U, 12U, 16U, 20U, 24U, 32U}) {
        const auto top = static_cast<std::int32_t>((std::int64_t{1} << (bits - 1)) - 1);
        const SoundFormat format{.bitDepth = bits};
        const auto below = measured(format, 4, ofBits(bits, {top - 1, top - 1, top - 1}));
        EXPECT_THAT(below.channels[0].fullScale.ranges, IsEmpty()) << bits;
        const auto at = measured(format, 4, ofBits(bits, {top, top, top, -top, -top - 1, -top}));
        EXPECT_THAT(at.channels[0].fullScale.ranges,
                    ElementsAre(FrameRange{0, 3}, FrameRange{3, 3}))
            << bits;
        const auto above = measured(format, 4, ofBits(bits, {1 - top, 1 - top, 1 - top}));
        EXPECT_THAT(above.channels[0].fullScale.ranges, IsEmpty()) << bits;
    }
}

TEST(FullScale, OfFloatingPointIsOneAndAbove) {
    const SoundFormat format{.bitDepth = 32, .isFloatingPoint = true};
    const auto sound = measured<double>(format, 4, {1, 1.5, 1, 0.999, 0.999, 0.999, -1, -1, -2});
    EXPECT_THAT(sound.channels[0].fullScale.ranges,
                ElementsAre(FrameRange{0, 3}, FrameRange{6, 3}));
}

TEST(FullScale, RunsGoOnFromPieceToPiece) {
    std::vector<std::int32_t> samples(20, 0);
    std::fill(samples.begin() + 6, samples.begin() + 11, 32'767);
    for (std::size_t piece = 1; piece < 12; ++piece) {
        EXPECT_THAT(mono16(samples, piece).channels[0].fullScale.ranges,
                    ElementsAre(FrameRange{6, 5}))
            << piece;
    }
}

/// Samples are looked at by 32 for whether there is any run among them.
TEST(FullScale, RunsAreFoundWhereverTheyLie) {
    for (std::uint64_t start = 0; start < 70; ++start) {
        std::vector<std::int32_t> samples(200, 5);
        std::fill_n(samples.begin() + static_cast<std::ptrdiff_t>(start), 4, 32'767);
        std::fill_n(samples.begin() + static_cast<std::ptrdiff_t>(start) + 40, 5, -32'767);
        std::fill_n(samples.begin() + static_cast<std::ptrdiff_t>(start) + 60, 35, 0);
        const auto sound = mono16(samples);
        EXPECT_THAT(sound.channels[0].fullScale.ranges,
                    ElementsAre(FrameRange{start, 4}, FrameRange{start + 40, 5}));
        EXPECT_THAT(sound.channels[0].silences, ElementsAre(FrameRange{start + 60, 35}));
    }
}

TEST(FullScale, CountsWhatItDoesNotList) {
    std::vector<std::int32_t> samples;
    for (std::size_t i = 0; i < mostListedRanges + 1; ++i) {
        samples.insert(samples.end(), {32'767, 32'767, 32'767, 1});
    }
    const ListedRanges listed = mono16(samples).channels[0].fullScale;
    EXPECT_THAT(listed.ranges, SizeIs(mostListedRanges));
    EXPECT_EQ(listed.total, mostListedRanges + 1);
    // The last one that is listed ends behind frame 4 * 4,095 + 3.
    const std::uint64_t listedEnd = 4 * (mostListedRanges - 1) + 3;
    EXPECT_FALSE(rangesWithin(listed, {0, listedEnd}, 3).mayBeMore);
    EXPECT_TRUE(rangesWithin(listed, {0, listedEnd + 1}, 3).mayBeMore);
}

TEST(RangesWithin, AreCutToTheRange) {
    const ListedRanges listed{{{10, 5}, {20, 4}, {30, 3}}, 3};
    EXPECT_THAT(rangesWithin(listed, {12, 10}, 1).ranges,
                ElementsAre(FrameRange{12, 3}, FrameRange{20, 2}));
    EXPECT_THAT(rangesWithin(listed, {12, 10}, 3).ranges, ElementsAre(FrameRange{12, 3}));
    EXPECT_THAT(rangesWithin(listed, {15, 5}, 1).ranges, IsEmpty());
    EXPECT_THAT(rangesWithin(listed, {31, std::numeric_limits<std::uint64_t>::max()}, 1).ranges,
                ElementsAre(FrameRange{31, 2}));
}

}  // namespace
}  // namespace trellant::audio
