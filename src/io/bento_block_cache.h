// SPDX-License-Identifier: Apache-2.0
// Small reads out of cached blocks of the file. A read call for each small value costs twice as
// much, and a mapping of the file would end the process when the file shrinks.
#pragma once

#include <trellant/io/random_access_file.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>

namespace trellant {

class BentoBlockCache {
  public:
    /// Bytes beyond which a read is better done straight from the file.
    static constexpr std::uint64_t readLimit = 4096;

    /// `file` must outlive the cache.
    explicit BentoBlockCache(const RandomAccessFile& file) : file_(file) {}

    /// Fills `into` from byte `offset`; false when not all of it can be had, with `into` in an
    /// unknown state: a plain read then finds the error. Any thread.
    [[nodiscard]] bool read(std::uint64_t offset, std::span<std::byte> into) noexcept;

  private:
    static constexpr std::uint64_t blockSize = 16'384;
    static constexpr std::size_t slotCount = 128;
    static constexpr std::uint64_t noBlock = ~std::uint64_t{0};

    using Storage = std::array<std::byte, blockSize>;
    struct Slot {
        std::uint64_t block = noBlock;
        /// Made on first use.
        std::unique_ptr<Storage> bytes;
    };

    /// The bytes of block number `block` that the file has; empty when they cannot be had.
    std::span<const std::byte> block(std::uint64_t block) noexcept;

    const RandomAccessFile& file_;
    std::mutex mutex_;
    std::array<Slot, slotCount> slots_;
};

}  // namespace trellant
