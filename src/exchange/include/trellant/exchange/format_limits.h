// SPDX-License-Identifier: Apache-2.0
// What the numbers and texts of a format can hold. Each gives the value as it will be written; one
// that is carried as it is comes back unchanged, and so does one that was given once.
#pragma once

#include <trellant/exchange/capabilities.h>
#include <trellant/model/timeline.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {
namespace exchange {

/// Linear factors; to the precision that the table names.
[[nodiscard]] double gainWithin(ExportFormat format, double gain) noexcept;
/// 0 left to 1 right.
[[nodiscard]] double panWithin(ExportFormat format, double pan) noexcept;
[[nodiscard]] AAFAutomationInterpolation automationCurveWithin(
    ExportFormat format, const AAFAutomationInterpolation& curve);
[[nodiscard]] AAFAutomationInterpolation fadeCurveWithin(ExportFormat format,
                                                         const AAFAutomationInterpolation& curve);
[[nodiscard]] std::string nameWithin(ExportFormat format, std::string_view name);
/// Channels, from the first on, that a clip may choose one of in this format.
[[nodiscard]] std::int64_t mostChannels(ExportFormat format) noexcept;

}  // namespace exchange
}  // namespace trellant
