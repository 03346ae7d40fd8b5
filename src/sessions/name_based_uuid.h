// SPDX-License-Identifier: Apache-2.0
// Identifiers that are the same each time the same is written: no clock and no random number is in
// them.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace trellant::sessions {

/// A UUID of version 5 (RFC 4122, section 4.3), in the order of its text form. `name` says what it
/// identifies; names of different kinds of things begin with different words.
[[nodiscard]] std::array<std::byte, 16> nameBasedUuid(std::string_view name);

/// "6BA7B810-9DAD-11D1-80B4-00C04FD430C8".
[[nodiscard]] std::string uuidText(const std::array<std::byte, 16>& uuid);

}  // namespace trellant::sessions
