// SPDX-License-Identifier: Apache-2.0
// Fades in a few letters, for narrow columns.
#pragma once

#include <trellant/model/timeline.h>

#include <string>

namespace trellant::cli {

/// "linear" as "lin": a few letters for a narrow column.
[[nodiscard]] std::string shortCurveText(const AAFAutomationInterpolation& curve);
/// "3f lin": a fade's length in frames and its curve; "<1f lin" when it is shorter than half a
/// frame.
[[nodiscard]] std::string shortFadeText(const AAFTimeline& timeline, const AAFFade& fade);

}  // namespace trellant::cli
