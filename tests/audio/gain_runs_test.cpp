// SPDX-License-Identifier: Apache-2.0
// Runs give what gain.h gives sample by sample, to the last bit; what that is, gain_test.cpp works
// out by hand.
#include <trellant/audio/gain.h>
#include <trellant/audio/gain_runs.h>

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace trellant::audio {
namespace {

using Curve = AAFAutomationInterpolation;

const std::array<Curve, 5> curves{Curve::linear(), Curve::constant(), Curve::power(),
                                  Curve::logarithmic(), Curve::unsupported("other")};
constexpr std::int64_t length = 97;

AAFAutomationEnvelope envelope(const Curve& curve) {
    return {curve,
            {{AAFRational(1, 10), 0.5},
             {AAFRational(1, 3), 2},
             {AAFRational(1, 3), 0.25},
             {AAFRational(2, 3), 0},
             {AAFRational(9, 10), -1}}};
}

double placeOf(std::int64_t sample) {
    return static_cast<double>(sample) / static_cast<double>(length);
}

/// Each sample of the owner and some beyond it, in runs of all lengths up to 9.
template <class Apply, class Expected>
void expectSameAsOneByOne(const Apply& apply, const Expected& expected) {
    for (std::int64_t first = -2; first < length + 2; ++first) {
        std::vector<double> factors(static_cast<std::size_t>(first + 2) % 9 + 1, 0.75);
        apply(OwnerRun{first, length}, factors);
        for (std::size_t i = 0; i < factors.size(); ++i) {
            EXPECT_EQ(factors[i], expected(placeOf(first + static_cast<std::int64_t>(i))))
                << first << " + " << i;
        }
    }
}

TEST(GainRuns, FollowAnEnvelope) {
    for (const Curve& curve : curves) {
        const AAFAutomationEnvelope points = envelope(curve);
        expectSameAsOneByOne(
            [&](const OwnerRun& run, auto& factors) { multiplyByEnvelope(points, run, factors); },
            [&](double place) { return 0.75 * valueAt(points, place); });
    }
}

TEST(GainRuns, GiveValuesOfAnEnvelope) {
    const AAFAutomationEnvelope points = envelope(Curve::linear());
    expectSameAsOneByOne(
        [&](const OwnerRun& run, auto& values) { fillWithEnvelope(points, run, 7, values); },
        [&](double place) { return valueAt(points, place, 7); });
    expectSameAsOneByOne(
        [](const OwnerRun& run, auto& values) { fillWithEnvelope({}, run, 7, values); },
        [](double /*place*/) { return 7.0; });
}

TEST(GainRuns, LeaveFactorsAloneWithoutPoints) {
    expectSameAsOneByOne(
        [](const OwnerRun& run, auto& factors) { multiplyByEnvelope({}, run, factors); },
        [](double /*place*/) { return 0.75; });
}

TEST(GainRuns, FollowFades) {
    for (const Curve& curve : curves) {
        expectSameAsOneByOne(
            [&](const OwnerRun& run, auto& factors) { multiplyByFadeIn(curve, {}, run, factors); },
            [&](double place) { return 0.75 * fadeInGain(curve, place); });
        expectSameAsOneByOne(
            [&](const OwnerRun& run, auto& factors) { multiplyByFadeOut(curve, {}, run, factors); },
            [&](double place) { return 0.75 * fadeOutGain(curve, place); });
    }
}

TEST(GainRuns, FollowTheShapeOfAFade) {
    const AAFFade fade{.curve = Curve::power(), .points = envelope(Curve::power()).points};
    expectSameAsOneByOne(
        [&](const OwnerRun& run, auto& factors) {
            multiplyByFadeIn(fade.curve, fade.points, run, factors);
        },
        [&](double place) { return 0.75 * fadeInGain(fade, place); });
    expectSameAsOneByOne(
        [&](const OwnerRun& run, auto& factors) {
            multiplyByFadeOut(fade.curve, fade.points, run, factors);
        },
        [&](double place) { return 0.75 * fadeOutGain(fade, place); });
}

/// A quarter of the way of four samples, by hand.
TEST(GainRuns, CountPlacesFromTheOwnersStart) {
    std::vector<double> factors(4, 2);
    multiplyByFadeIn(Curve::linear(), {}, {0, 4}, factors);
    EXPECT_EQ(factors, (std::vector<double>{0, 0.5, 1, 1.5}));
    std::vector<double> last(2, 2);
    multiplyByFadeOut(Curve::linear(), {}, {2, 4}, last);
    EXPECT_EQ(last, (std::vector<double>{1, 0.5}));
}

}  // namespace
}  // namespace trellant::audio
