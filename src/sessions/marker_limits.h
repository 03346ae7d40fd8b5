// SPDX-License-Identifier: Apache-2.0
// What files of markers hold of a value where they do not hold all of them.
#pragma once

#include <string>
#include <string_view>

namespace trellant::sessions {

/// The name as files of markers hold it: each run of control characters is a blank.
[[nodiscard]] std::string markerName(std::string_view name);

}  // namespace trellant::sessions
