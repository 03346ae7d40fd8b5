// SPDX-License-Identifier: Apache-2.0
// The compressed table of contents: tokens of one code byte and a payload whose size the code
// fixes, in blocks; 0xFF between tokens is padding.
//
//   code    payload  meaning
//   1       12       object (4), property (4), type (4); generation 0
//   2       8        property (4), type (4); generation 0
//   3       4        type (4); generation 0
//   4       4        generation (4), at most 65535 kept
//   5, 6    8        range: offset (4), length (4); 6 continued
//   7, 8    12       range: offset (8), length (4); 8 continued
//   9       0        immediate value without bytes
//   10..13  4        immediate value of 1 to 4 bytes, at the payload's head
//   14      4        immediate value of 4 bytes, continued
//   15      4        reference list: identifier (4)
//   16..23           reserved: 4, 4, 8, 8, 8, 12, 12, 12 bytes
//   24      0        end of block: the table goes on at the next block boundary
//   25, 26  16       range: offset (8), length (8); 26 continued
//
// Codes 1 to 4 say what the values of the following tokens belong to; all others but the end of a
// block are an item each.
#pragma once

#include <trellant/base/byte_load.h>
#include <trellant/io/bento_packed_item.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace trellant {

/// What is wrong with a token.
enum class BentoTokenFault {
    none,
    /// Its code has no meaning.
    unknown,
    /// Its payload reaches beyond the table.
    cut
};

/// The byte after the block that holds byte `position` of the table; `blockSize` is not 0.
template <typename Position>
[[nodiscard]] constexpr Position bentoNextBlock(Position position, Position blockSize) noexcept {
    return (position / blockSize + 1) * blockSize;
}

/// One token, by its code byte. What takes a payload takes as many bytes as payloadSize() says, of
/// a token without fault.
class BentoToken {
  public:
    static constexpr std::size_t longestSize = 17;

    explicit BentoToken(std::byte code) noexcept : code_(std::to_integer<std::uint8_t>(code)) {}

    [[nodiscard]] std::uint8_t code() const noexcept { return code_; }
    [[nodiscard]] bool isPadding() const noexcept { return code_ == 0xFF; }
    [[nodiscard]] bool isEndOfBlock() const noexcept { return code_ == 24; }

    /// With `room` bytes of the table behind the code.
    [[nodiscard]] BentoTokenFault fault(std::size_t room) const noexcept {
        if (code_ == 0 || code_ >= payloadSizes.size()) {
            return BentoTokenFault::unknown;
        }
        return room < payloadSize() ? BentoTokenFault::cut : BentoTokenFault::none;
    }
    /// In bytes, of a token that is not unknown.
    [[nodiscard]] std::size_t payloadSize() const noexcept { return payloadSizes[code_]; }

    [[nodiscard]] bool changesState() const noexcept { return code_ <= generationCode; }
    /// The item adds no bytes to its value and says so; reserved codes do not.
    [[nodiscard]] bool isEmptyImmediate() const noexcept { return code_ == 9; }
    [[nodiscard]] bool isReferenceList() const noexcept { return code_ == 15; }

    /// Sets in `state` what the following values belong to; for a token that changes it.
    void changeState(const std::byte* payload, OMFByteOrder order,
                     BentoPackedItem& state) const noexcept {
        if (code_ == generationCode) {
            state.generation =
                static_cast<std::uint16_t>(std::min<std::uint32_t>(word(payload, order), 0xFFFF));
            return;
        }
        if (code_ == 1) {
            state.object = word(payload, order);
            payload += sizeof(std::uint32_t);
        }
        if (code_ <= 2) {
            state.property = word(payload, order);
            payload += sizeof(std::uint32_t);
        }
        state.type = word(payload, order);
        state.generation = 0;
    }

    /// Sets the value of `item`, a copy of the state, for any other token.
    void setValue(const std::byte* payload, OMFByteOrder order,
                  BentoPackedItem& item) const noexcept {
        switch (code_) {
            case 5:
            case 6:
                item.setRange(word(payload, order), word(payload + 4, order));
                item.continued = code_ == 6;
                break;
            case 7:
            case 8:
                item.setRange(longWord(payload, order), word(payload + 8, order));
                item.continued = code_ == 8;
                break;
            case 25:
            case 26:
                item.setRange(longWord(payload, order), longWord(payload + 8, order));
                item.continued = code_ == 26;
                break;
            case 10:
            case 11:
            case 12:
            case 13:
            case 14:
                item.setImmediate(payload, std::min<std::size_t>(code_ - 9U, 4));
                item.continued = code_ == 14;
                break;
            case 15:
                item.kind = BentoPackedItem::Kind::referenceList;
                item.offset = word(payload, order);
                break;
            default:
                // 9, and the reserved codes on purpose: an item that is there, without bytes.
                break;
        }
    }

  private:
    static constexpr std::uint8_t generationCode = 4;
    static constexpr std::array<std::uint8_t, 27> payloadSizes{
        0, 12, 8, 4, 4, 8, 8, 12, 12, 0, 4, 4, 4, 4, 4, 4, 4, 4, 8, 8, 8, 12, 12, 12, 0, 16, 16};

    static std::uint32_t word(const std::byte* at, OMFByteOrder order) noexcept {
        return loadUnsigned<std::uint32_t>(at, order);
    }
    static std::uint64_t longWord(const std::byte* at, OMFByteOrder order) noexcept {
        return loadUnsigned<std::uint64_t>(at, order);
    }

    std::uint8_t code_;
};

}  // namespace trellant
