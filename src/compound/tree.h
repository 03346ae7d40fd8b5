// SPDX-License-Identifier: Apache-2.0
// The entries of a compound file as they were added. An entry's place in the list is its number in
// the directory; the root is the first.
#pragma once

#include "held_bytes.h"

#include <trellant/compound/compound_file.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::compound {

enum class EntryKind : std::uint8_t {
    storage,
    /// A stream whose bytes are held here.
    heldStream,
    /// A stream whose bytes a source gives.
    sourceStream,
};

struct Entry {
    /// The storage that it stands in; the root's own number for the root.
    std::uint32_t parent = 0;
    EntryKind kind = EntryKind::storage;
    std::uint8_t nameLength = 0;
    /// Into Tree::names.
    std::size_t nameOffset = 0;
    /// Of a stream.
    std::uint64_t byteCount = 0;
    /// Of a storage into Tree::storageClasses, of a stream into Tree::heldBytes or Tree::sources.
    std::size_t content = 0;
};

struct Tree {
    ClassID headerClass{};
    /// By the hundred thousand: in pieces, since a vector would copy them all as it grows.
    std::deque<Entry> entries{};
    std::u16string names{};
    std::vector<ClassID> storageClasses{};
    HeldBytes heldBytes{};
    std::vector<ByteSource> sources{};

    [[nodiscard]] std::u16string_view nameOf(const Entry& entry) const noexcept {
        return std::u16string_view(names).substr(entry.nameOffset, entry.nameLength);
    }
};

}  // namespace trellant::compound
