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
#include <variant>

namespace trellant {

inline constexpr std::size_t bentoEntrySize = 24;

/// An entry claims to hold so many bytes of value itself, more than its 4.
struct BentoEntryTooLong {
    std::uint32_t byteCount;
};

/// The item of the 24 bytes at `entry`, or what is wrong with them.
[[nodiscard]] inline std::variant<BentoPackedItem, BentoEntryTooLong> readBentoEntry(
    const std::byte* entry, OMFByteOrder order) noexcept {
    constexpr unsigned immediateFlag = 1U << 0U;
    constexpr unsigned continuedFlag = 1U << 1U;
    BentoPackedItem item;
    item.object = loadUnsigned<std::uint32_t>(entry, order);
    item.property = loadUnsigned<std::uint32_t>(entry + 4, order);
    item.type = loadUnsigned<std::uint32_t>(entry + 8, order);
    item.generation = loadUnsigned<std::uint16_t>(entry + 20, order);
    const auto length = loadUnsigned<std::uint32_t>(entry + 16, order);
    const unsigned flags = loadUnsigned<std::uint16_t>(entry + 22, order);
    item.continued = (flags & continuedFlag) != 0;
    if ((flags & immediateFlag) == 0) {
        item.setRange(loadUnsigned<std::uint32_t>(entry + 12, order), length);
    } else if (length <= BentoPackedItem::immediateLimit) {
        item.setImmediate(entry + 12, length);
    } else {
        return BentoEntryTooLong{length};
    }
    return item;
}

}  // namespace trellant
