// SPDX-License-Identifier: Apache-2.0
// An entry of the directory as it is stored; numbers little-endian:
//   offset  size  meaning
//        0    64  name, zero behind it
//       64     2  bytes of the name with one zero unit
//       66     1  1 storage, 2 stream, 5 root
//       67     1  0 red, 1 black
//       68    12  entries left and right of it among its siblings, root of the tree that it holds
//       80    16  class
//       96    20  state, times of creation and change: zero
//      116     4  first sector, or mini sector
//      120     8  length
#pragma once

#include "siblings.h"

#include <trellant/compound/compound_file.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace trellant::compound {

inline constexpr std::uint32_t entrySize = 128;

enum class EntryType : std::uint8_t { unused = 0, storage = 1, stream = 2, root = 5 };

struct DirectoryEntry {
    EntryType type = EntryType::unused;
    /// At most 31 units.
    std::u16string_view name{};
    EntryLinks links{};
    ClassID classID{};
    std::uint32_t firstSector = 0;
    std::uint64_t byteCount = 0;
};

/// An unused entry is zero but for its links.
[[nodiscard]] std::array<std::byte, entrySize> stored(const DirectoryEntry& entry) noexcept;

}  // namespace trellant::compound
