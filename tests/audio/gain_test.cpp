// SPDX-License-Identifier: Apache-2.0
// Expected values are worked out by hand: sin 22.5 degrees is sqrt(2 - sqrt 2)/2, sin 67.5 degrees
// sqrt(2 + sqrt 2)/2; -60 dB is a factor of 1/1,000, so a quarter of the way from there is
// 10^-2.25, half of it 10^-1.5, three quarters 10^-0.75.
#include <trellant/audio/gain.h>

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace trellant::audio {
namespace {

using Curve = AAFAutomationInterpolation;

constexpr double tolerance = 1e-12;
constexpr double sine22 = 0.3826834323650898;
constexpr double sine45 = 0.7071067811865476;
constexpr double sine67 = 0.9238795325112867;
constexpr std::array<double, 5> places{0, 0.25, 0.5, 0.75, 1};

void expectFadeIn(const Curve& curve, const std::array<double, 5>& expected) {
    for (std::size_t i = 0; i < places.size(); ++i) {
        EXPECT_NEAR(fadeInGain(curve, places[i]), expected[i], tolerance) << places[i];
    }
}

void expectFadeOut(const Curve& curve, const std::array<double, 5>& expected) {
    for (std::size_t i = 0; i < places.size(); ++i) {
        EXPECT_NEAR(fadeOutGain(curve, places[i]), expected[i], tolerance) << places[i];
    }
}

AAFAutomationEnvelope envelope(const Curve& curve) {
    return {curve, {{AAFRational(1, 4), 1}, {AAFRational(1, 2), 0.5}, {AAFRational(3, 4), 2}}};
}

TEST(FadeGain, LinearRisesEvenly) {
    expectFadeIn(Curve::linear(), {0, 0.25, 0.5, 0.75, 1});
    expectFadeOut(Curve::linear(), {1, 0.75, 0.5, 0.25, 0});
}

TEST(FadeGain, ConstantHoldsWhereItComesFrom) {
    expectFadeIn(Curve::constant(), {0, 0, 0, 0, 1});
    expectFadeOut(Curve::constant(), {1, 1, 1, 1, 0});
}

TEST(FadeGain, PowerIsAQuarterOfASine) {
    expectFadeIn(Curve::power(), {0, sine22, sine45, sine67, 1});
    expectFadeOut(Curve::power(), {1, sine67, sine45, sine22, 0});
}

TEST(FadeGain, PowerKeepsThePowerOfACrossfade) {
    for (int step = 0; step <= 100; ++step) {
        const double in = fadeInGain(Curve::power(), step / 100.0);
        const double out = fadeOutGain(Curve::power(), step / 100.0);
        EXPECT_NEAR(in * in + out * out, 1, tolerance);
    }
}

TEST(FadeGain, LogarithmicIsEvenInDecibelsOverSixty) {
    expectFadeIn(Curve::logarithmic(),
                 {0, 0.005623413251903491, 0.03162277660168379, 0.1778279410038923, 1});
    expectFadeOut(Curve::logarithmic(),
                  {1, 0.1778279410038923, 0.03162277660168379, 0.005623413251903491, 0});
}

TEST(FadeGain, AnUnknownCurveIsLinear) {
    expectFadeIn(Curve::unsupported("OMF Fade Type 7"), {0, 0.25, 0.5, 0.75, 1});
    expectFadeOut(Curve::unsupported("OMF Fade Type 7"), {1, 0.75, 0.5, 0.25, 0});
}

TEST(FadeGain, BeyondItsEndsAFadeIsAsAtThem) {
    for (const Curve& curve : {Curve::linear(), Curve::power(), Curve::logarithmic()}) {
        EXPECT_EQ(fadeInGain(curve, -1), 0);
        EXPECT_EQ(fadeInGain(curve, 2), 1);
        EXPECT_EQ(fadeInGain(curve, std::numeric_limits<double>::quiet_NaN()), 0);
        EXPECT_EQ(fadeOutGain(curve, -1), 1);
        EXPECT_EQ(fadeOutGain(curve, 2), 0);
    }
}

TEST(FadeGain, PointsAreItsShape) {
    AAFFade fade{.curve = Curve::linear(),
                 .points = {{AAFRational(0), 0}, {AAFRational(1, 2), 0.8}, {AAFRational(1), 1}}};
    EXPECT_NEAR(fadeInGain(fade, 0.25), 0.4, tolerance);
    EXPECT_NEAR(fadeInGain(fade, 0.75), 0.9, tolerance);
    fade.reversesPointTime = true;
    EXPECT_NEAR(fadeOutGain(fade, 0.25), 0.9, tolerance);
    EXPECT_NEAR(fadeOutGain(fade, 1), 0, tolerance);
}

TEST(FadeGain, AWholeFadeWithoutPointsIsItsCurve) {
    const AAFFade fade{.curve = Curve::power(), .points = {}};
    EXPECT_NEAR(fadeInGain(fade, 0.25), sine22, tolerance);
    EXPECT_NEAR(fadeOutGain(fade, 0.25), sine67, tolerance);
}

TEST(AutomationValue, LinearGoesFromPointToPoint) {
    const auto gains = envelope(Curve::linear());
    EXPECT_EQ(valueAt(gains, 0), 1);
    EXPECT_EQ(valueAt(gains, 0.25), 1);
    EXPECT_NEAR(valueAt(gains, 0.375), 0.75, tolerance);
    EXPECT_EQ(valueAt(gains, 0.5), 0.5);
    EXPECT_NEAR(valueAt(gains, 0.625), 1.25, tolerance);
    EXPECT_EQ(valueAt(gains, 0.75), 2);
    EXPECT_EQ(valueAt(gains, 1), 2);
}

TEST(AutomationValue, ConstantHoldsUpToTheNextPoint) {
    const auto gains = envelope(Curve::constant());
    EXPECT_EQ(valueAt(gains, 0.4999), 1);
    EXPECT_EQ(valueAt(gains, 0.5), 0.5);
    EXPECT_EQ(valueAt(gains, 0.7499), 0.5);
}

TEST(AutomationValue, PowerAndLogarithmicMoveByTheirCurves) {
    // Half way down from 1 to 0.5, then half way up from 0.5 to 2.
    EXPECT_NEAR(valueAt(envelope(Curve::power()), 0.375), 0.5 + 0.5 * sine45, tolerance);
    EXPECT_NEAR(valueAt(envelope(Curve::power()), 0.625), 0.5 + 1.5 * sine45, tolerance);
    // The geometric mean is half way in decibels.
    EXPECT_NEAR(valueAt(envelope(Curve::logarithmic()), 0.375), sine45, tolerance);
    EXPECT_NEAR(valueAt(envelope(Curve::logarithmic()), 0.625), 1, tolerance);
}

TEST(AutomationValue, LogarithmicKeepsTheSignOfInvertedSignals) {
    EXPECT_NEAR(valueBetween(Curve::logarithmic(), -2, -0.5, 0.5), -1, tolerance);
    EXPECT_NEAR(valueBetween(Curve::logarithmic(), 0, -1, 0.5), -0.03162277660168379, tolerance);
    EXPECT_NEAR(valueBetween(Curve::logarithmic(), -1, 1, 0.75), 0.5, tolerance);
    EXPECT_EQ(valueBetween(Curve::logarithmic(), 0, 0, 0.5), 0);
}

TEST(AutomationValue, OfSeveralPointsAtOnePlaceTheLastHolds) {
    const AAFAutomationEnvelope step{
        Curve::linear(),
        {{AAFRational(0), 1}, {AAFRational(1, 2), 1}, {AAFRational(1, 2), 0}, {AAFRational(1), 0}}};
    EXPECT_EQ(valueAt(step, 0.49), 1);
    EXPECT_EQ(valueAt(step, 0.5), 0);
}

TEST(AutomationValue, WithoutPointsThereIsTheGivenValue) {
    EXPECT_EQ(valueAt({}, 0.5), 1);
    EXPECT_EQ(valueAt({}, 0.5, 0.25), 0.25);
}

TEST(ClipGain, IsTheFixedGainTimesTheAutomation) {
    AAFClipEvent clip;
    clip.fixedClipGain = 0.5;
    EXPECT_EQ(clipGain(clip, 0.5), 0.5);
    clip.clipGainAutomation = envelope(Curve::linear());
    EXPECT_NEAR(clipGain(clip, 0.375), 0.375, tolerance);
    clip.clipMuted = true;
    EXPECT_EQ(clipGain(clip, 0.375), 0);
}

TEST(PanGains, KeepThePower) {
    EXPECT_EQ(panGains(0), (PanGains{1, 0}));
    EXPECT_EQ(panGains(1), (PanGains{0, 1}));
    EXPECT_NEAR(panGains(0.5).left, sine45, tolerance);
    EXPECT_NEAR(panGains(0.5).right, sine45, tolerance);
    EXPECT_NEAR(panGains(0.25).left, sine67, tolerance);
    EXPECT_NEAR(panGains(0.25).right, sine22, tolerance);
    EXPECT_EQ(panGains(-3), (PanGains{1, 0}));
    EXPECT_EQ(panGains(3), (PanGains{0, 1}));
}

}  // namespace
}  // namespace trellant::audio
