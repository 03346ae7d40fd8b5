// SPDX-License-Identifier: Apache-2.0
// The line at the foot of the terminal that shows how far something is.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace trellant::cli {

/// "label  [=====>    ]  42%" for a terminal of `columns` cells, one of which stays free: a full
/// line would wrap. The label is cut before the bar is; below 24 columns only the number is shown.
/// A fraction outside 0 to 1 is taken for the nearer end, what is no number for 0.
[[nodiscard]] std::string barLine(double fraction, std::string_view label, std::size_t columns);

}  // namespace trellant::cli
