// SPDX-License-Identifier: Apache-2.0
// What an open container holds, and the reading of values that opening and use share.
#pragma once

#include "bento_block_cache.h"
#include "bento_item_index.h"
#include "bento_names.h"

#include <trellant/io/bento_container.h>

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

namespace trellant {

struct BentoContainer::Contents {
    explicit Contents(const std::string& path);

    /// The bytes of a run's items in table order. Throws OMFIOError unsupported beyond `maxBytes`
    /// and the file's errors.
    [[nodiscard]] Bytes value(BentoItemIndex::Run run, std::int64_t maxBytes) const;
    /// Appends `length` bytes of the file, whose bounds it checks before growing `bytes`.
    void appendRange(Bytes& bytes, std::uint64_t offset, std::uint64_t length) const;

    /// Counts what was read, if it was long: bytes, and pieces looked at.
    void countRead(std::uint64_t bytes, std::uint64_t pieces) const noexcept {
        const std::uint64_t work =
            (bytes > shortValue ? bytes : 0) + (pieces > fewPieces ? pieces * bytesOfPiece : 0);
        if (work > 0) {
            longReads.fetch_add(work, std::memory_order_relaxed);
        }
    }

    /// Fills `into` from byte `offset`; false when the file's errors stand in the way.
    [[nodiscard]] bool readSmall(std::uint64_t offset, std::span<std::byte> into) const noexcept;

    RandomAccessFile file;
    BentoFooter footer;
    BentoItemIndex index;
    mutable BentoBlockCache cache;
    mutable std::atomic<std::uint64_t> longReads = 0;
    BentoNames propertyNames;
    BentoNames typeNames;

  private:
    static constexpr std::uint64_t shortValue = 64;
    static constexpr std::uint64_t fewPieces = 8;
    /// What it takes to look at a piece, as bytes.
    static constexpr std::uint64_t bytesOfPiece = 16;

    [[nodiscard]] BentoNames readNames(std::uint32_t property) const;
};

}  // namespace trellant
