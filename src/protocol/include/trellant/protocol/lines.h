// SPDX-License-Identifier: Apache-2.0
// The lines of a worker's standard error. A line that begins with the progress marker carries one
// Progress as compact JSON; every other line is log text. Each line is made whole, so that it can
// go out in one write.
#pragma once

#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

inline constexpr std::string_view progressMarker = "TRELLANT-AAF-PROGRESS ";
inline constexpr std::string_view logPrefix = "trellant-omf: ";

/// Marker, JSON and line feed; empty when the record has no JSON form (a fraction that is not
/// finite, a phase that is not UTF-8): a progress line is not worth a failure.
[[nodiscard]] std::string progressLine(std::string_view phase, double fraction);

/// Prefix, the message as it is, and a line feed.
[[nodiscard]] std::string logLineText(std::string_view message);

}  // namespace trellant
