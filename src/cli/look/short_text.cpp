// SPDX-License-Identifier: Apache-2.0
#include "short_text.h"

#include "terminal/shown_text.h"

#include <trellant/handoff/frame_clock.h>
#include <trellant/handoff/timeline_text.h>

#include <cstdint>
#include <variant>

namespace trellant::cli {

std::string shortCurveText(const AAFAutomationInterpolation& curve) {
    constexpr std::size_t letters = 3;
    constexpr std::size_t cellsOfOthers = 4;
    const std::string text = curveText(curve);
    if (std::holds_alternative<AAFAutomationInterpolation::Unsupported>(curve.curve)) {
        return cutToCells(shownText(text), cellsOfOthers);
    }
    return text.substr(0, letters);
}

std::string shortFadeText(const AAFTimeline& timeline, const AAFFade& fade) {
    const std::int64_t frames =
        (fade.duration * frameClock(timeline.clock).timecodeRate.exactRate).roundedInt64();
    return (frames == 0 ? "<1" : std::to_string(frames)) + "f " + shortCurveText(fade.curve);
}

}  // namespace trellant::cli
