// SPDX-License-Identifier: Apache-2.0
// What the numbers and texts of a format can hold. Each gives the value as it will be written; one
// that is carried as it is comes back unchanged.
#pragma once

#include <trellant/exchange/capabilities.h>
#include <trellant/model/timeline.h>

#include <string>

namespace trellant::exchange {

[[nodiscard]] double gainWithin(ExportFormat format, double gain) noexcept;
[[nodiscard]] double panWithin(ExportFormat format, double pan) noexcept;
[[nodiscard]] AAFAutomationInterpolation automationCurveWithin(
    ExportFormat format, const AAFAutomationInterpolation& curve);
[[nodiscard]] AAFAutomationInterpolation fadeCurveWithin(ExportFormat format,
                                                         const AAFAutomationInterpolation& curve);
[[nodiscard]] std::string nameWithin(ExportFormat format, const std::string& name);
/// Channels, from 0, that a clip may choose in this format.
[[nodiscard]] std::int64_t mostChannels(ExportFormat format) noexcept;

}  // namespace trellant::exchange
