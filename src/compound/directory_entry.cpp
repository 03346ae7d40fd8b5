// SPDX-License-Identifier: Apache-2.0
#include "directory_entry.h"

#include <algorithm>

namespace trellant::compound {

namespace {

using StoredEntry = std::array<std::byte, entrySize>;

void put(StoredEntry& entry, std::size_t offset, std::uint64_t value, std::size_t width) noexcept {
    for (std::size_t index = 0; index < width; ++index) {
        entry[offset + index] = static_cast<std::byte>(value >> (8 * index));
    }
}

}  // namespace

StoredEntry stored(const DirectoryEntry& entry) noexcept {
    StoredEntry result{};
    const bool isUsed = entry.type != EntryType::unused;
    for (std::size_t index = 0; index < entry.name.size(); ++index) {
        put(result, 2 * index, entry.name[index], 2);
    }
    put(result, 64, isUsed ? 2 * (entry.name.size() + 1) : 0, 2);
    put(result, 66, static_cast<std::uint8_t>(entry.type), 1);
    put(result, 67, isUsed && !entry.links.isRed ? 1 : 0, 1);
    put(result, 68, entry.links.left, 4);
    put(result, 72, entry.links.right, 4);
    put(result, 76, entry.links.child, 4);
    std::copy(entry.classID.begin(), entry.classID.end(), result.begin() + 80);
    put(result, 116, entry.firstSector, 4);
    put(result, 120, entry.byteCount, 8);
    return result;
}

}  // namespace trellant::compound
