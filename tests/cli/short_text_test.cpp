// SPDX-License-Identifier: Apache-2.0
#include "look/short_text.h"

#include <gtest/gtest.h>

namespace trellant::cli {
namespace {

AAFTimeline timelineAt(const AAFTimecodeRate& rate) {
    AAFTimeline timeline;
    timeline.clock = {rate.exactRate, rate, AAFTimecodeAddress(1, 0, 0, 0, rate)};
    return timeline;
}

TEST(ShortText, FadesAreFramesAndAFewLetters) {
    const AAFTimeline timeline = timelineAt(AAFTimecodeRate::fps25());
    AAFFade fade{.duration = AAFRational(3, 25)};
    EXPECT_EQ(shortFadeText(timeline, fade), "3f lin");
    fade.curve = AAFAutomationInterpolation::logarithmic();
    // A hundredth of a second is a quarter of a frame.
    fade.duration = AAFRational(1, 100);
    EXPECT_EQ(shortFadeText(timeline, fade), "<1f log");
    EXPECT_EQ(shortCurveText(AAFAutomationInterpolation::power()), "pow");
    EXPECT_EQ(shortCurveText(AAFAutomationInterpolation::constant()), "con");
    EXPECT_EQ(shortCurveText(AAFAutomationInterpolation::unsupported("S-curve")), "S-c\u2026");
}

}  // namespace
}  // namespace trellant::cli
