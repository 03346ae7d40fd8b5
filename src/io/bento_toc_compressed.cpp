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
#include "bento_toc.h"

#include <trellant/base/byte_load.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace trellant {

namespace {

constexpr std::uint8_t newObject = 1;
constexpr std::uint8_t newProperty = 2;
constexpr std::uint8_t explicitGeneration = 4;
constexpr std::uint8_t emptyImmediate = 9;
constexpr std::uint8_t referenceList = 15;
constexpr std::uint8_t endOfBlock = 24;
constexpr std::uint8_t lastCode = 26;
constexpr std::uint8_t padding = 0xFF;

constexpr std::array<std::uint8_t, lastCode + 1> payloadBytes{
    0, 12, 8, 4, 4, 8, 8, 12, 12, 0, 4, 4, 4, 4, 4, 4, 4, 4, 8, 8, 8, 12, 12, 12, 0, 16, 16};

/// Bytes of table that an item takes in files as they are written. Room for that many items is set
/// aside at once; what is never filled takes addresses but no memory.
constexpr std::size_t typicalItemBytes = 12;

class Decoder {
  public:
    Decoder(ByteView toc, OMFByteOrder order, std::uint32_t blockSize, EmptyPieces emptyPieces)
        : toc_(toc), order_(order), blockSize_(blockSize), emptyPieces_(emptyPieces) {
        items_.reserve(toc_.size() / typicalItemBytes + 1);
    }

    BentoItemList decode() {
        std::size_t position = 0;
        while (position < toc_.size()) {
            const std::byte* const token = toc_.data() + position;
            const auto code = std::to_integer<std::uint8_t>(*token);
            if (code == padding) {
                ++position;
            } else if (code == endOfBlock) {
                position = std::min(toc_.size(), (position / blockSize_ + 1) * blockSize_);
            } else {
                position += decodeToken(code, token, position);
            }
        }
        items_.trim();
        return std::move(items_);
    }

  private:
    /// Acts on the token at `position` and gives its size.
    std::size_t decodeToken(std::uint8_t code, const std::byte* token, std::size_t position) {
        if (code == 0 || code > lastCode) {
            throw OMFIOError::malformed("invalid compressed TOC token " + std::to_string(code) +
                                        " at byte " + std::to_string(position));
        }
        const std::size_t size = payloadBytes[code];
        if (toc_.size() - position - 1 < size) {
            throw OMFIOError::malformed("truncated compressed TOC token");
        }
        if (code <= explicitGeneration) {
            changeState(code, token + 1);
            valueHasItem_ = false;
        } else if (code != emptyImmediate || !valueHasItem_) {
            appendItem(code, token + 1);
            // A reference list is no piece, so it cannot stand for the empty one.
            valueHasItem_ =
                valueHasItem_ || (code != referenceList && emptyPieces_ == EmptyPieces::dropped);
        }
        return 1 + size;
    }

    void changeState(std::uint8_t code, const std::byte* payload) {
        if (code == explicitGeneration) {
            state_.generation =
                static_cast<std::uint16_t>(std::min<std::uint32_t>(word(payload), 0xFFFF));
            return;
        }
        if (code == newObject) {
            state_.object = word(payload);
            payload += sizeof(std::uint32_t);
        }
        if (code == newObject || code == newProperty) {
            state_.property = word(payload);
            payload += sizeof(std::uint32_t);
        }
        state_.type = word(payload);
        state_.generation = 0;
    }

    void appendItem(std::uint8_t code, const std::byte* payload) {
        BentoPackedItem& item = items_.append(state_);
        switch (code) {
            case 5:
            case 6:
                setRange(item, word(payload), word(payload + 4), code == 6);
                break;
            case 7:
            case 8:
                setRange(item, longWord(payload), word(payload + 8), code == 8);
                break;
            case 25:
            case 26:
                setRange(item, longWord(payload), longWord(payload + 8), code == 26);
                break;
            case 10:
            case 11:
            case 12:
            case 13:
            case 14:
                item.setImmediate(payload, std::min<std::size_t>(code - 9U, 4));
                item.continued = code == 14;
                break;
            case 15:
                item.kind = BentoPackedItem::Kind::referenceList;
                item.offset = word(payload);
                break;
            default:
                // 9, and the reserved codes on purpose: an item that is there, without bytes.
                break;
        }
    }

    static void setRange(BentoPackedItem& item, std::uint64_t offset, std::uint64_t length,
                         bool continued) {
        item.kind = BentoPackedItem::Kind::range;
        item.offset = offset;
        item.length = length;
        item.continued = continued;
    }

    [[nodiscard]] std::uint32_t word(const std::byte* at) const {
        return loadUnsigned<std::uint32_t>(at, order_);
    }
    [[nodiscard]] std::uint64_t longWord(const std::byte* at) const {
        return loadUnsigned<std::uint64_t>(at, order_);
    }

    ByteView toc_;
    OMFByteOrder order_;
    std::size_t blockSize_;
    EmptyPieces emptyPieces_;
    /// That an empty item would follow another of the same value, and may be left out.
    bool valueHasItem_ = false;
    /// What the following value tokens belong to.
    BentoPackedItem state_;
    BentoItemList items_;
};

}  // namespace

BentoItemList decodeCompressedToc(ByteView toc, OMFByteOrder order, std::uint32_t blockSize,
                                  EmptyPieces emptyPieces) {
    if (blockSize == 0) {
        throw OMFIOError::malformed("invalid compressed TOC block size");
    }
    return Decoder(toc, order, blockSize, emptyPieces).decode();
}

}  // namespace trellant
