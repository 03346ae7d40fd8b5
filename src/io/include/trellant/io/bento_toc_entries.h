// SPDX-License-Identifier: Apache-2.0
// The 1.0d4 table of contents: entries of 24 bytes.
//
//   offset  size  meaning
//   0       4     object
//   4       4     property
//   8       4     type
//   12      4     value offset, or the immediate value's bytes
//   16      4     value length
//   20      2     generation
//   22      2     flags: bit 0 immediate value, bit 1 continued
#pragma once

#include <trellant/base/byte_load.h>
#include <trellant/io/bento_packed_item.h>

#include <cstddef>
#include <cstdint>

namespace trellant {

/// One entry.
class BentoEntry {
  public:
    static constexpr std::size_t size = 24;

    /// The 24 bytes at `bytes` outlive it.
    BentoEntry(const std::byte* bytes, OMFByteOrder order) noexcept
        : bytes_(bytes), order_(order) {}

    /// Bytes of its value.
    [[nodiscard]] std::uint32_t length() const noexcept { return word(16); }
    /// It claims to hold more bytes of value itself than there is room for, its one fault.
    [[nodiscard]] bool isTooLong() const noexcept {
        return isImmediate() && length() > BentoPackedItem::immediateLimit;
    }

    /// Of an entry that is not too long.
    [[nodiscard]] BentoPackedItem item() const noexcept {
        BentoPackedItem item;
        item.object = word(0);
        item.property = word(4);
        item.type = word(8);
        item.generation = halfWord(20);
        item.continued = (flags() & continuedFlag) != 0;
        if (isImmediate()) {
            item.setImmediate(bytes_ + 12, length());
        } else {
            item.setRange(word(12), length());
        }
        return item;
    }

  private:
    static constexpr unsigned immediateFlag = 1U << 0U;
    static constexpr unsigned continuedFlag = 1U << 1U;

    [[nodiscard]] unsigned flags() const noexcept { return halfWord(22); }
    [[nodiscard]] bool isImmediate() const noexcept { return (flags() & immediateFlag) != 0; }
    [[nodiscard]] std::uint16_t halfWord(std::size_t offset) const noexcept {
        return loadUnsigned<std::uint16_t>(bytes_ + offset, order_);
    }
    [[nodiscard]] std::uint32_t word(std::size_t offset) const noexcept {
        return loadUnsigned<std::uint32_t>(bytes_ + offset, order_);
    }

    const std::byte* bytes_;
    OMFByteOrder order_;
};

}  // namespace trellant
