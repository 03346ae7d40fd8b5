// SPDX-License-Identifier: Apache-2.0
// The strict reading of a table of tokens: any fault refuses all of it.
#include "bento_toc.h"

#include <trellant/io/bento_toc_tokens.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <string>
#include <utility>

namespace trellant {

namespace {

/// Bytes of table that an item takes in files as they are written. Room for that many items is set
/// aside at once; what is never filled takes addresses but no memory.
constexpr std::size_t typicalItemBytes = 12;

void refuseAny(BentoTokenFault fault, BentoToken token, std::size_t position) {
    switch (fault) {
        case BentoTokenFault::none:
            break;
        case BentoTokenFault::unknown:
            throw OMFIOError::malformed("invalid compressed TOC token " +
                                        std::to_string(token.code()) + " at byte " +
                                        std::to_string(position));
        case BentoTokenFault::cut:
            throw OMFIOError::malformed("truncated compressed TOC token");
    }
}

class Decoder {
  public:
    Decoder(ByteView toc, OMFByteOrder order, std::size_t blockSize, EmptyPieces emptyPieces)
        : toc_(toc), order_(order), blockSize_(blockSize), emptyPieces_(emptyPieces) {
        items_.reserve(toc_.size() / typicalItemBytes + 1);
    }

    BentoItemList decode() {
        std::size_t position = 0;
        while (position < toc_.size()) {
            const BentoToken token(toc_[position]);
            if (token.isPadding()) {
                ++position;
            } else if (token.isEndOfBlock()) {
                position = std::min(toc_.size(), bentoNextBlock(position, blockSize_));
            } else {
                refuseAny(token.fault(toc_.size() - position - 1), token, position);
                const std::byte* const payload = toc_.data() + position + 1;
                position += 1 + token.payloadSize();
                take(token, payload);
            }
        }
        items_.trim();
        return std::move(items_);
    }

  private:
    void take(BentoToken token, const std::byte* payload) {
        if (token.changesState()) {
            token.changeState(payload, order_, state_);
            valueHasItem_ = false;
        } else if (!token.isEmptyImmediate() || !valueHasItem_) {
            token.setValue(payload, order_, items_.append(state_));
            // A reference list is no piece, so it cannot stand for the empty one.
            valueHasItem_ =
                valueHasItem_ || (!token.isReferenceList() && emptyPieces_ == EmptyPieces::dropped);
        }
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
