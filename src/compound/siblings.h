// SPDX-License-Identifier: Apache-2.0
// The red-black trees that the entries of each storage stand in.
#pragma once

#include "tree.h"

#include <cstdint>
#include <vector>

namespace trellant::compound {

inline constexpr std::uint32_t noEntry = 0xFFFFFFFF;

/// Where a reader goes from an entry.
struct EntryLinks {
    std::uint32_t left = noEntry;
    std::uint32_t right = noEntry;
    /// Of a storage: the root of the tree of what it holds.
    std::uint32_t child = noEntry;
    bool isRed = false;
};

/// One for each entry, at the same place. The trees are balanced; of their levels all but an
/// incomplete last one are black. Throws CompoundError for names that siblings share.
[[nodiscard]] std::vector<EntryLinks> linkSiblings(const Tree& tree);

}  // namespace trellant::compound
