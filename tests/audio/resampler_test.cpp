// SPDX-License-Identifier: Apache-2.0
#include <trellant/audio/resampler.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace trellant::audio {
namespace {

constexpr std::uint32_t target = 48'000;

std::vector<float> resampled(std::uint32_t rate, const std::vector<float>& samples,
                             std::size_t channels = 1, std::size_t piece = 1'000'000) {
    std::vector<float> made;
    Resampler resampler(rate, target, channels, [&made](std::span<const float> some) {
        made.insert(made.end(), some.begin(), some.end());
    });
    for (std::size_t i = 0; i < samples.size(); i += piece) {
        resampler.add(std::span(samples).subspan(i, std::min(piece, samples.size() - i)));
    }
    resampler.finish();
    return made;
}

std::vector<float> sine(std::uint32_t rate, double hertz, std::size_t frames) {
    std::vector<float> samples(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        samples[i] = static_cast<float>(
            0.5 * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / rate));
    }
    return samples;
}

std::size_t loudest(const std::vector<float>& samples) {
    const auto found = std::max_element(
        samples.begin(), samples.end(),
        [](float left, float right) { return std::fabs(left) < std::fabs(right); });
    return static_cast<std::size_t>(found - samples.begin());
}

TEST(Resampler, EqualRatesChangeNothing) {
    const auto samples = sine(target, 1'234, 1'000);
    EXPECT_EQ(resampled(target, samples), samples);
}

TEST(Resampler, GivesAsManyFramesAsTheSoundLasts) {
    // 441 frames at 44,100 Hz are 10 ms, 480 frames; one frame more is 1.09 frames more.
    EXPECT_EQ(resampled(44'100, std::vector<float>(441)).size(), 480U);
    EXPECT_EQ(resampled(44'100, std::vector<float>(442)).size(), 482U);
    EXPECT_EQ(resampled(96'000, std::vector<float>(3)).size(), 2U);
    EXPECT_EQ(resampled(8'000, std::vector<float>(1)).size(), 6U);
    EXPECT_EQ(resampled(44'100, {}).size(), 0U);
    EXPECT_EQ(resampled(44'100, std::vector<float>(2 * 441), 2).size(), 2 * 480U);
}

TEST(Resampler, MovesNothing) {
    for (const std::uint32_t rate :
         {4'000U, 11'025U, 22'050U, 32'000U, 44'100U, 88'200U, 96'000U, 192'000U, 768'000U}) {
        // A quarter of a second in, which is a whole frame at each of these rates but 11,025 and
        // 22,050 Hz, where it is the frame before that.
        std::vector<float> samples(rate / 2);
        const std::size_t frame = rate / 4;
        samples[frame] = 1;
        const double moment = static_cast<double>(frame) * target / rate;
        EXPECT_EQ(loudest(resampled(rate, samples)), static_cast<std::size_t>(std::lround(moment)))
            << rate;
    }
}

TEST(Resampler, DoesNotDrift) {
    // 47,999 Hz has no common divisor with 48,000 Hz. After 2,000,000 frames the moment is
    // 2,000,000 * 48,000/47,999 = 2,000,041.67, nearest to frame 2,000,042.
    std::vector<float> samples(2'000'100);
    samples[2'000'000] = 1;
    EXPECT_EQ(loudest(resampled(47'999, samples)), 2'000'042U);
}

TEST(Resampler, KeepsASteadySound) {
    const auto made = resampled(44'100, std::vector<float>(4'410, 0.5F));
    for (std::size_t i = 200; i + 200 < made.size(); ++i) {
        ASSERT_NEAR(made[i], 0.5, 1e-5) << i;
    }
}

TEST(Resampler, KeepsASine) {
    for (const std::uint32_t rate : {22'050U, 44'100U, 96'000U}) {
        const auto made = resampled(rate, sine(rate, 5'000, rate / 10));
        const auto expected = sine(target, 5'000, target / 10);
        ASSERT_EQ(made.size(), expected.size());
        for (std::size_t i = 200; i + 200 < made.size(); ++i) {
            ASSERT_NEAR(made[i], expected[i], 2e-4) << rate << " Hz, frame " << i;
        }
    }
}

TEST(Resampler, KeepsASineWhoseMomentsAreRounded) {
    // 44,101 Hz has no larger divisor with 48,000 Hz: moments lie anywhere between two samples,
    // within 1/4,096 of one that has weights. A sine of 5 kHz moves by 0.5 * 2 pi * 5,000/44,101 at
    // most from sample to sample: 9e-5 in so much time.
    const auto made = resampled(44'101, sine(44'101, 5'000, 44'101));
    const auto expected = sine(target, 5'000, target);
    ASSERT_EQ(made.size(), expected.size());
    for (std::size_t i = 200; i + 200 < made.size(); ++i) {
        ASSERT_NEAR(made[i], expected[i], 3e-4) << i;
    }
}

TEST(Resampler, LeavesOutWhatTheNewRateCannotHold) {
    // 30 kHz at 96 kHz would be heard as 18 kHz. -70 dB of 0.5 is 1.6e-4.
    const auto made = resampled(96'000, sine(96'000, 30'000, 9'600));
    for (std::size_t i = 200; i + 200 < made.size(); ++i) {
        ASSERT_NEAR(made[i], 0, 1.6e-4) << i;
    }
}

TEST(Resampler, KeepsChannelsApart) {
    const auto left = sine(44'100, 700, 2'000);
    const auto right = sine(44'100, 3'000, 2'000);
    std::vector<float> both;
    for (std::size_t i = 0; i < left.size(); ++i) {
        both.insert(both.end(), {left[i], right[i]});
    }
    const auto made = resampled(44'100, both, 2);
    const auto madeLeft = resampled(44'100, left);
    const auto madeRight = resampled(44'100, right);
    ASSERT_EQ(made.size(), 2 * madeLeft.size());
    for (std::size_t i = 0; i < madeLeft.size(); ++i) {
        ASSERT_EQ(made[2 * i], madeLeft[i]) << i;
        ASSERT_EQ(made[2 * i + 1], madeRight[i]) << i;
    }
}

TEST(Resampler, HandsOnWhatIsReady) {
    // All but the 32 frames that the last moments wait for, and the one before them.
    std::size_t made = 0;
    Resampler resampler(44'100, target, 1,
                        [&made](std::span<const float> some) { made += some.size(); });
    resampler.add(std::vector<float>(44'100));
    EXPECT_GE(made, (44'100U - 33) * 48 / 44.1 - 1);
    EXPECT_LT(made, 48'000U);
}

TEST(Resampler, DoesNotDependOnHowTheSoundComes) {
    const auto samples = sine(44'100, 997, 3'001);
    const auto atOnce = resampled(44'100, samples);
    for (const std::size_t piece : {1U, 31U, 32U, 64U, 1'000U}) {
        EXPECT_EQ(resampled(44'100, samples, 1, piece), atOnce) << piece;
    }
}

}  // namespace
}  // namespace trellant::audio
