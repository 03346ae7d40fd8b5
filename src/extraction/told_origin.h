// SPDX-License-Identifier: Apache-2.0
// Where a source was recorded, in the words that trellant-wav takes.
#pragma once

#include <trellant/base/keyed_hash.h>
#include <trellant/handoff/hand_off.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace trellant {

/// By essence id, for sources of a tape with labels. `date`: when the audio came to be, in seconds
/// since 1970-01-01 00:00:00; absent: when the interchange file was changed last, as it says.
[[nodiscard]] KeyedMap<std::string, std::vector<std::string>> toldOrigins(
    const HandOff& handOff, const std::optional<std::int64_t>& date);

}  // namespace trellant
