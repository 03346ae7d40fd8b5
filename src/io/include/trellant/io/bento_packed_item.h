// SPDX-License-Identifier: Apache-2.0
// One item of a table of contents as it is held in memory: 32 bytes, millions of them in one array.
#pragma once

#include <trellant/base/bytes.h>
#include <trellant/io/bento_types.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace trellant {

struct BentoPackedItem {
    enum class Kind : std::uint8_t { immediate, range, referenceList };

    /// Bytes of an immediate value at most.
    static constexpr std::size_t immediateLimit = 4;

    std::uint32_t object = 0;
    std::uint32_t property = 0;
    std::uint32_t type = 0;
    std::uint16_t generation = 0;
    Kind kind = Kind::immediate;
    /// Of an immediate value, 0 to 4.
    std::uint8_t immediateCount : 7 = 0;
    bool continued : 1 = false;
    /// Of a range; of a reference list its identifier; else the immediate bytes as they stand.
    std::uint64_t offset = 0;
    /// Of a range.
    std::uint64_t length = 0;

    [[nodiscard]] ByteView immediate() const noexcept {
        return std::as_bytes(std::span(&offset, 1)).first(immediateCount);
    }

    /// Bytes that the item adds to its value.
    [[nodiscard]] std::uint64_t byteCount() const noexcept {
        return kind == Kind::range ? length : kind == Kind::immediate ? immediateCount : 0;
    }

    void setRange(std::uint64_t begin, std::uint64_t byteLength) noexcept {
        kind = Kind::range;
        offset = begin;
        length = byteLength;
    }
    /// `count` is at most immediateLimit.
    void setImmediate(const std::byte* bytes, std::size_t count) noexcept {
        kind = Kind::immediate;
        immediateCount = count & 0x7FU;
        std::memcpy(&offset, bytes, count);
    }

    [[nodiscard]] BentoValueSegment segment() const;
};

static_assert(sizeof(BentoPackedItem) == 32);

inline BentoValueSegment BentoPackedItem::segment() const {
    switch (kind) {
        case Kind::immediate: {
            BentoImmediate value{.count = immediateCount};
            std::memcpy(value.bytes.data(), &offset, immediateCount);
            return {value, continued};
        }
        case Kind::range:
            return {BentoRange{offset, length}, continued};
        case Kind::referenceList:
            return {BentoReferenceList{static_cast<std::uint32_t>(offset)}, continued};
    }
    return {};
}

}  // namespace trellant
