// SPDX-License-Identifier: Apache-2.0
// What a table of contents holds: items, each one piece of one property value of one object.
#pragma once

#include <trellant/base/byte_order.h>

#include <array>
#include <cstdint>
#include <variant>

namespace [[gnu::visibility("default")]] trellant {

/// The properties whose values name the object that carries them: as a type, and as a property.
inline constexpr std::uint32_t bentoTypeNameProperty = 23;
inline constexpr std::uint32_t bentoPropertyNameProperty = 24;

/// Where the table of contents lies and how it is written.
struct BentoFooter {
    /// Of the footer and of all numbers in the table of contents.
    OMFByteOrder byteOrder = OMFByteOrder::little;
    std::uint16_t majorVersion = 0;
    std::uint16_t minorVersion = 0;
    /// Bytes in a block of the compressed table of contents; 0 for the 1.0d4 form.
    std::uint32_t blockSize = 0;
    /// The table's place in the file, in bytes; it lies wholly inside.
    std::uint64_t tocOffset = 0;
    std::uint64_t tocSize = 0;
    /// The table's place came from the extended, 64-bit footer.
    bool hasExtendedFooter = false;
    bool operator==(const BentoFooter&) const = default;
};

/// Value bytes that stand in the table of contents itself.
struct BentoImmediate {
    std::array<std::uint8_t, 4> bytes{};
    /// 0 to 4.
    std::uint8_t count = 0;
    bool operator==(const BentoImmediate&) const = default;
};
/// Value bytes in the file, both in bytes; unchecked, as the table gives them.
struct BentoRange {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    bool operator==(const BentoRange&) const = default;
};
/// A reference-list identifier; carries no value bytes.
struct BentoReferenceList {
    std::uint32_t id = 0;
    bool operator==(const BentoReferenceList&) const = default;
};
/// Where the bytes of one piece are.
using BentoStorage = std::variant<BentoImmediate, BentoRange, BentoReferenceList>;

/// One piece of a value.
struct BentoValueSegment {
    BentoStorage storage;
    /// The table marks this piece as continued by a following one.
    bool continued = false;
    bool operator==(const BentoValueSegment&) const = default;
};

/// One line of the table: a piece of the value that `property` has for `object`, numbers as the
/// file gives them. `type` is the number of the object that carries the type's name.
struct BentoTOCItem {
    std::uint32_t object = 0;
    std::uint32_t property = 0;
    std::uint32_t type = 0;
    std::uint16_t generation = 0;
    BentoValueSegment segment;
    bool operator==(const BentoTOCItem&) const = default;
};

}  // namespace trellant
