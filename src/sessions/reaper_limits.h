// SPDX-License-Identifier: Apache-2.0
// What a REAPER project holds of a value where it does not hold all of them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace trellant::sessions {

/// Channels of a source from the first on that an item can play alone.
inline constexpr std::int64_t reaperChannels = 64;

/// The name as a project holds it: each run of control characters is a blank, and of names with all
/// three of ", ' and ` the last have become '.
[[nodiscard]] std::string reaperName(std::string_view name);

}  // namespace trellant::sessions
