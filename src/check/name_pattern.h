// SPDX-License-Identifier: Apache-2.0
// Names held against patterns of a profile.
#pragma once

#include <cstddef>
#include <string_view>

namespace trellant::check {

/// Bytes of a name that are compared; a longer one fits no pattern but "*".
inline constexpr std::size_t longestComparedName = 4'096;

/// Whether the whole of `name` is what `pattern` says: "*" stands for any characters, "?" for one,
/// all else for itself. Takes time in proportion to the product of both lengths at most.
[[nodiscard]] bool fitsPattern(std::string_view name, std::string_view pattern);

}  // namespace trellant::check
