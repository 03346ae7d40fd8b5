// SPDX-License-Identifier: Apache-2.0
// Values of a timeline as the page says them, in the language of the process.
#pragma once

#include <trellant/handoff/sources.h>
#include <trellant/model/timeline.h>

#include <string>
#include <string_view>

namespace trellant::page {

[[nodiscard]] std::string_view stateName(SourceState state);
/// A curve that is not known is called as the file calls it; any bytes then.
[[nodiscard]] std::string curveName(const AAFAutomationInterpolation& curve);
/// "3f linear": frames and curve; "<1f linear" for less than half a frame.
[[nodiscard]] std::string fadeText(const AAFTimeline& timeline, const AAFFade& fade);
/// "25 fps", "29.97 fps, drop-frame".
[[nodiscard]] std::string frameRateText(const AAFTimecodeRate& rate);

}  // namespace trellant::page
