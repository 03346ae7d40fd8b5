// SPDX-License-Identifier: Apache-2.0
#include <trellant/audio/tone_meter.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

namespace trellant::audio {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr std::uint32_t usualRate = 48'000;

/// Adds a sine to the samples from `first` on.
void addSine(std::vector<double>& samples, std::size_t first, std::size_t frames, double hertz,
             double amplitude, std::uint32_t rate = usualRate) {
    for (std::size_t i = 0; i < frames; ++i) {
        samples[first + i] +=
            amplitude * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / rate);
    }
}

/// Evenly spread from -amplitude to amplitude, the same at each run.
void addNoise(std::vector<double>& samples, double amplitude) {
    std::uint32_t state = 1;
    for (double& sample : samples) {
        state = state * 1'664'525U + 1'013'904'223U;
        sample += amplitude * (state / 2'147'483'648.0 - 1);
    }
}

ListedRanges tonesOf(const std::vector<double>& samples, std::uint32_t rate = usualRate) {
    ToneMeter meter(rate);
    meter.add(samples);
    return meter.taken();
}

std::vector<double> steadySine(double hertz, double amplitude = 0.5) {
    std::vector<double> samples(usualRate);
    addSine(samples, 0, samples.size(), hertz, amplitude);
    return samples;
}

/// Half a window is 5 ms.
void expectAbout(const FrameRange& found, const FrameRange& meant, std::uint32_t rate) {
    const double slack = rate / 200.0;
    EXPECT_NEAR(static_cast<double>(found.first), static_cast<double>(meant.first), slack);
    EXPECT_NEAR(static_cast<double>(found.end()), static_cast<double>(meant.end()), slack);
}

TEST(ToneMeter, FindsATonesPlaceAndLength) {
    // A frame of film, 41.7 ms, two seconds into the sound, at each rate that sessions have.
    for (const std::uint32_t rate : {8'000U, 11'025U, 44'100U, 48'000U, 96'000U, 192'000U}) {
        const FrameRange pop{2 * rate, rate / 24};
        std::vector<double> samples(3 * rate);
        addSine(samples, pop.first, pop.frames, lineUpTone, 0.1, rate);
        const auto found = tonesOf(samples, rate);
        ASSERT_THAT(found.ranges, SizeIs(1)) << rate;
        EXPECT_EQ(found.total, 1U);
        expectAbout(found.ranges[0], pop, rate);
    }
}

TEST(ToneMeter, FindsATonesPlaceWhereverItBegins) {
    for (std::size_t first = 4'800; first < 4'800 + 480; first += 37) {
        std::vector<double> samples(usualRate);
        addSine(samples, first, 1'600, lineUpTone, 0.5);
        const auto found = tonesOf(samples);
        ASSERT_THAT(found.ranges, SizeIs(1)) << first;
        expectAbout(found.ranges[0], {first, 1'600}, usualRate);
    }
}

TEST(ToneMeter, TakesNoOtherTone) {
    for (const double hertz : {100.0, 500.0, 900.0, 940.0, 1'060.0, 1'100.0, 2'000.0, 3'000.0}) {
        EXPECT_THAT(tonesOf(steadySine(hertz)).ranges, IsEmpty()) << hertz;
    }
}

TEST(ToneMeter, AllowsForAToneThatIsALittleOff) {
    // 10 Hz off turn by a tenth of a round in 10 ms: sinc(0.1)^2 = 0.967 of the power is left.
    for (const double hertz : {990.0, 1'000.0, 1'010.0}) {
        EXPECT_THAT(tonesOf(steadySine(hertz)).ranges, SizeIs(1)) << hertz;
    }
}

TEST(ToneMeter, TakesASteadyOffsetForNoSound) {
    auto samples = steadySine(1'000, 0.1);
    for (double& sample : samples) {
        sample += 0.5;
    }
    EXPECT_THAT(tonesOf(samples).ranges, SizeIs(1));
}

TEST(ToneMeter, TakesNoNoise) {
    std::vector<double> samples(usualRate);
    addNoise(samples, 0.5);
    EXPECT_THAT(tonesOf(samples).ranges, IsEmpty());
}

TEST(ToneMeter, HearsAToneThroughALittleNoise) {
    // Noise of amplitude a has a power of a^2/3, a sine of amplitude s one of s^2/2. 0.1 and 0.5
    // make a share of 0.125/(0.125 + 0.0033) = 0.97, 0.5 and 0.5 one of 0.6.
    auto samples = steadySine(1'000);
    addNoise(samples, 0.1);
    EXPECT_THAT(tonesOf(samples).ranges, SizeIs(1));
    samples = steadySine(1'000);
    addNoise(samples, 0.5);
    EXPECT_THAT(tonesOf(samples).ranges, IsEmpty());
}

TEST(ToneMeter, TakesNoVoice) {
    // A voice of 125 Hz with overtones up to 3 kHz, the eighth of which is at 1 kHz: a formant
    // there makes that the loudest, and still but a part of it.
    std::vector<double> samples(usualRate);
    for (int overtone = 1; overtone <= 24; ++overtone) {
        const double nearness = 1 / (1 + 0.5 * std::abs(overtone - 8));
        addSine(samples, 0, samples.size(), 125.0 * overtone, 0.1 * nearness);
    }
    EXPECT_THAT(tonesOf(samples).ranges, IsEmpty());
}

TEST(ToneMeter, PassesOverWhatIsHardlyHeard) {
    // An amplitude of 0.001 has a power of half a millionth, less than the least.
    EXPECT_THAT(tonesOf(steadySine(1'000, 0.001)).ranges, IsEmpty());
    EXPECT_THAT(tonesOf(steadySine(1'000, 0.002)).ranges, SizeIs(1));
}

TEST(ToneMeter, DoesNotDependOnHowTheSoundComes) {
    std::vector<double> samples(usualRate);
    addSine(samples, 10'001, 2'000, lineUpTone, 0.5);
    addSine(samples, 30'007, 4'000, lineUpTone, 0.5);
    const auto atOnce = tonesOf(samples);
    ASSERT_THAT(atOnce.ranges, SizeIs(2));
    for (const std::size_t piece : {1U, 239U, 241U, 5'000U}) {
        ToneMeter meter(usualRate);
        for (std::size_t i = 0; i < samples.size(); i += piece) {
            meter.add(std::span(samples).subspan(i, std::min(piece, samples.size() - i)));
        }
        EXPECT_EQ(meter.taken(), atOnce) << piece;
    }
}

TEST(ToneMeter, LooksForItAtTheLowestAndTheHighestRate) {
    for (const std::uint32_t rate : {lowestToneRate, highestToneRate}) {
        std::vector<double> samples(rate / 10);
        addSine(samples, 0, samples.size(), lineUpTone, 0.5, rate);
        EXPECT_THAT(tonesOf(samples, rate).ranges, SizeIs(1)) << rate;
    }
}

TEST(ToneMeter, LooksForNothingAtRatesThatHaveNoSuchTone) {
    for (const std::uint32_t rate : {1U, 3'999U, 768'001U, 4'000'000'000U}) {
        EXPECT_THAT(tonesOf(std::vector<double>(10'000, 0.5), rate).ranges, IsEmpty());
    }
}

}  // namespace
}  // namespace trellant::audio
