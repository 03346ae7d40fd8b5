// SPDX-License-Identifier: Apache-2.0
// What a DAWproject holds of a value where it does not hold all of them.
#pragma once

#include <string>
#include <string_view>

namespace trellant::sessions {

/// The text as a project holds it: each run of control characters is a blank, and what else XML has
/// no form for is U+FFFD.
[[nodiscard]] std::string dawProjectName(std::string_view name);

}  // namespace trellant::sessions
