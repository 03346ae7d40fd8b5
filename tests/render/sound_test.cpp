// SPDX-License-Identifier: Apache-2.0
// Sums are worked out by hand, in steps of 16 bits. sin 45 degrees, which is cos 45 degrees too, is
// 0.7071067811865476; half of the logarithmic way from -60 dB is 10^-1.5.
#include "rendered.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace trellant::testing {
namespace {

using Curve = AAFAutomationInterpolation;
using exchange::PlannedFade;
using exchange::PlannedTrack;
using render::Treatment;

constexpr double sine45 = 0.7071067811865476;

class SoundOfPlan : public ::testing::Test, public RenderedPlan {
  protected:
    [[nodiscard]] std::vector<double> track(std::size_t frames,
                                            Treatment treatment = Treatment::processed,
                                            exchange::Samples from = 0) const {
        return steps(*render::trackSound(plan, 0, treatment, from), frames);
    }
    static void expectNear(const std::vector<double>& actual, const std::vector<double>& expected) {
        ASSERT_EQ(actual.size(), expected.size());
        for (std::size_t i = 0; i < actual.size(); ++i) {
            EXPECT_NEAR(actual[i], expected[i], 1e-9) << i;
        }
    }
    void fadeIn(const Curve& curve) {
        addClip(addTrack(), addMedia({1'000, 1'000, 1'000, 1'000, 1'000}), 0, 5).fadeIn =
            PlannedFade{.length = 4, .curve = curve};
    }
    void fadeOut(const Curve& curve) {
        addClip(addTrack(), addMedia({1'000, 1'000, 1'000, 1'000, 1'000}), 0, 5).fadeOut =
            PlannedFade{.length = 2, .curve = curve};
    }
};

TEST_F(SoundOfPlan, ClipsLieWhereTheyLieAndPlayFromTheirSourceStart) {
    PlannedTrack& one = addTrack();
    const std::size_t media = addMedia({1, 2, 3, 4, 5});
    addClip(one, media, 1, 2).sourceStart = 2;
    addClip(one, media, 4, 2);
    EXPECT_EQ(track(7), (std::vector<double>{0, 3, 4, 0, 1, 2, 0}));
    EXPECT_EQ(track(4, Treatment::processed, 2), (std::vector<double>{4, 0, 1, 2}));
}

TEST_F(SoundOfPlan, OverlapsAreAdded) {
    PlannedTrack& one = addTrack();
    const std::size_t media = addMedia({1, 2, 3, 4});
    addClip(one, media, 0, 4);
    addClip(one, media, 2, 4);
    EXPECT_EQ(track(6), (std::vector<double>{1, 2, 4, 6, 3, 4}));
}

TEST_F(SoundOfPlan, WhatTheMediaDoNotHaveIsSilent) {
    PlannedTrack& one = addTrack();
    addClip(one, addMedia({1, 2}), 0, 4);
    addClip(one, addMissingMedia(), 4, 2);
    EXPECT_EQ(track(6), (std::vector<double>{1, 2, 0, 0, 0, 0}));
}

TEST_F(SoundOfPlan, MutedClipsAreSilentAlsoAsEdits) {
    addClip(addTrack(), addMedia({1, 2}), 0, 2).muted = true;
    EXPECT_EQ(track(2), (std::vector<double>{0, 0}));
    EXPECT_EQ(track(2, Treatment::edits), (std::vector<double>{0, 0}));
}

TEST_F(SoundOfPlan, AClipPlaysItsChannelElseTheFirst) {
    PlannedTrack& one = addTrack();
    const std::size_t media = addMedia({1, 10, 2, 20}, 2);
    addClip(one, media, 0, 2).channel = 1;
    addClip(one, media, 2, 2);
    // A channel that the file does not have.
    addClip(one, media, 4, 2).channel = 2;
    EXPECT_EQ(track(6), (std::vector<double>{10, 20, 1, 2, 0, 0}));
}

TEST_F(SoundOfPlan, GainsMultiply) {
    PlannedTrack& one = addTrack();
    addClip(one, addMedia({8, 16}), 0, 2).gain = 0.5;
    one.gain = -0.25;
    EXPECT_EQ(track(2), (std::vector<double>{-1, -2}));
    EXPECT_EQ(track(2, Treatment::edits), (std::vector<double>{8, 16}));
}

/// From 0 to 1 over the clip: at its samples 0, 1/4, 1/2 and 3/4.
TEST_F(SoundOfPlan, ClipAutomationRunsOverTheClip) {
    auto& clip = addClip(addTrack(), addMedia({100, 100, 100, 100}), 1, 4);
    clip.gain = 2;
    clip.gainAutomation =
        AAFAutomationEnvelope{Curve::linear(), {{AAFRational(0), 0}, {AAFRational(1), 1}}};
    EXPECT_EQ(track(5), (std::vector<double>{0, 0, 50, 100, 150}));
}

TEST_F(SoundOfPlan, ConstantAutomationMovesInSteps) {
    auto& clip = addClip(addTrack(), addMedia({100, 100, 100, 100}), 0, 4);
    clip.gainAutomation = AAFAutomationEnvelope{
        Curve::constant(), {{AAFRational(0), 0.5}, {AAFRational(1, 2), 2}, {AAFRational(1), 9}}};
    EXPECT_EQ(track(4), (std::vector<double>{50, 50, 200, 200}));
}

/// Over the session of 8 samples, of which the clip has the second half.
TEST_F(SoundOfPlan, TrackAutomationRunsOverTheSession) {
    PlannedTrack& one = addTrack();
    addClip(one, addMedia({800, 800, 800, 800}), 4, 4);
    one.gainAutomation =
        AAFAutomationEnvelope{Curve::linear(), {{AAFRational(0), 0}, {AAFRational(1), 1}}};
    EXPECT_EQ(track(8), (std::vector<double>{0, 0, 0, 0, 400, 500, 600, 700}));
}

TEST_F(SoundOfPlan, FadesInByTheirCurves) {
    fadeIn(Curve::linear());
    expectNear(track(5), {0, 250, 500, 750, 1'000});
}
TEST_F(SoundOfPlan, FadesInByAQuarterOfASine) {
    fadeIn(Curve::power());
    expectNear(track(5), {0, 382.6834323650898, 1'000 * sine45, 923.8795325112867, 1'000});
}
TEST_F(SoundOfPlan, FadesInEvenInDecibels) {
    fadeIn(Curve::logarithmic());
    expectNear(track(5), {0, 5.623413251903491, 31.62277660168379, 177.8279410038923, 1'000});
}
TEST_F(SoundOfPlan, FadesInAtOnceAtTheEndOfAConstantOne) {
    fadeIn(Curve::constant());
    expectNear(track(5), {0, 0, 0, 0, 1'000});
}
TEST_F(SoundOfPlan, FadesOutByTheirCurves) {
    fadeOut(Curve::linear());
    expectNear(track(5), {1'000, 1'000, 1'000, 1'000, 500});
}
TEST_F(SoundOfPlan, FadesOutByAQuarterOfACosine) {
    fadeOut(Curve::power());
    expectNear(track(5), {1'000, 1'000, 1'000, 1'000, 1'000 * sine45});
}
TEST_F(SoundOfPlan, FadesOutEvenInDecibels) {
    fadeOut(Curve::logarithmic());
    expectNear(track(5), {1'000, 1'000, 1'000, 1'000, 31.62277660168379});
}
TEST_F(SoundOfPlan, FadesOutByAnUnknownCurveAsByALinearOne) {
    fadeOut(Curve::unsupported("other"));
    expectNear(track(5), {1'000, 1'000, 1'000, 1'000, 500});
}

TEST_F(SoundOfPlan, AFadeHasItsOwnShape) {
    addClip(addTrack(), addMedia({100, 100, 100, 100}), 0, 4).fadeIn = PlannedFade{
        .length = 4, .shape = {{AAFRational(0), 1}, {AAFRational(1, 2), 0}, {AAFRational(1), 1}}};
    EXPECT_EQ(track(4), (std::vector<double>{100, 50, 0, 50}));
}

/// Four samples of both: 1,000 * (4 - n) / 4 + 2,000 * n / 4.
TEST_F(SoundOfPlan, ACrossfadeIsTheSumOfTwoFades) {
    PlannedTrack& one = addTrack();
    addClip(one, addMedia(std::vector<std::int16_t>(6, 1'000)), 0, 6).fadeOut =
        PlannedFade{.length = 4};
    addClip(one, addMedia(std::vector<std::int16_t>(6, 2'000)), 2, 6).fadeIn =
        PlannedFade{.length = 4};
    EXPECT_EQ(track(8),
              (std::vector<double>{1'000, 1'000, 1'000, 1'250, 1'500, 1'750, 2'000, 2'000}));
}

TEST_F(SoundOfPlan, TheMixPansWithConstantPower) {
    const std::size_t media = addMedia({1'000});
    const auto mixed = [&](std::optional<double> pan) {
        plan.tracks.clear();
        PlannedTrack& one = addTrack();
        addClip(one, media, 0, 1);
        one.pan = pan;
        return steps(*render::mixSound(plan, 0), 1);
    };
    expectNear(mixed(0), {1'000, 0});
    expectNear(mixed(1), {0, 1'000});
    expectNear(mixed(std::nullopt), {1'000 * sine45, 1'000 * sine45});
    // A third of the way: cos and sin of 30 degrees.
    expectNear(mixed(1.0 / 3), {866.0254037844386, 500});
}

TEST_F(SoundOfPlan, ThePanOfAMixMoves) {
    PlannedTrack& one = addTrack();
    addClip(one, addMedia({1'000, 1'000}), 0, 2);
    one.panAutomation =
        AAFAutomationEnvelope{Curve::linear(), {{AAFRational(0), 0}, {AAFRational(1), 1}}};
    expectNear(steps(*render::mixSound(plan, 0), 2), {1'000, 0, 1'000 * sine45, 1'000 * sine45});
}

TEST_F(SoundOfPlan, TheMixHasNeitherMutedTracksNorThoseBesideSoloedOnes) {
    const std::size_t media = addMedia({100});
    for (int i = 0; i < 3; ++i) {
        PlannedTrack& one = addTrack();
        addClip(one, media, 0, 1);
        one.pan = 0;
        one.gain = i + 1;
    }
    const auto left = [this] { return steps(*render::mixSound(plan, 0), 1).front(); };
    EXPECT_EQ(left(), 600);
    plan.tracks[0].muted = true;
    EXPECT_EQ(left(), 500);
    plan.tracks[2].solo = true;
    EXPECT_EQ(left(), 300);
    plan.tracks[2].muted = true;
    EXPECT_EQ(left(), 0);
}

TEST_F(SoundOfPlan, AClipAloneHasHandlesAndItsGainButNoFades) {
    auto& clip = addClip(addTrack(), addMedia({1, 2, 3, 4, 5, 6}), 10, 2);
    clip.sourceStart = 2;
    clip.gain = 10;
    clip.muted = true;
    clip.fadeIn = PlannedFade{.length = 2};
    clip.gainAutomation =
        AAFAutomationEnvelope{Curve::linear(), {{AAFRational(0), 1}, {AAFRational(1), 2}}};
    // The gain is 1 before, 1 and 3/2 in, and 2 behind the clip.
    EXPECT_EQ(steps(*render::clipSound(clip, Treatment::processed, 2), 6),
              (std::vector<double>{10, 20, 30, 60, 100, 120}));
    EXPECT_EQ(steps(*render::clipSound(clip, Treatment::edits, 1), 4),
              (std::vector<double>{2, 3, 4, 5}));
}

}  // namespace
}  // namespace trellant::testing
