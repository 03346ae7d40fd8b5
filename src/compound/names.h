// SPDX-License-Identifier: Apache-2.0
// Names of storages and streams: which are allowed, and their order among siblings.
#pragma once

#include <compare>
#include <cstddef>
#include <string_view>

namespace trellant::compound {

inline constexpr std::size_t maximumNameLength = 31;

/// Throws CompoundError unless `name` may be one.
void checkName(std::u16string_view name);

/// The order in the tree of siblings: shorter names first, then by upper-cased units. Equivalent
/// names cannot stand in one storage.
[[nodiscard]] std::weak_ordering compareNames(std::u16string_view left,
                                              std::u16string_view right) noexcept;

}  // namespace trellant::compound
