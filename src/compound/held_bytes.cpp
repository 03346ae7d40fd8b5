// SPDX-License-Identifier: Apache-2.0
#include "held_bytes.h"

#include <algorithm>

namespace trellant::compound {

namespace {

/// A place is the piece's number times this, and the offset in it.
constexpr std::size_t pieceSize = 1'048'576;

}  // namespace

std::size_t HeldBytes::add(ByteView bytes) {
    if (pieces_.empty() || pieces_.back().size() + bytes.size() > pieceSize ||
        pieces_.back().size() == pieceSize) {
        pieces_.emplace_back().reserve(std::max(pieceSize, bytes.size()));
    }
    Bytes& piece = pieces_.back();
    const std::size_t place = (pieces_.size() - 1) * pieceSize + piece.size();
    piece.insert(piece.end(), bytes.begin(), bytes.end());
    return place;
}

ByteView HeldBytes::at(std::size_t place, std::size_t count) const {
    return ByteView(pieces_[place / pieceSize]).subspan(place % pieceSize, count);
}

}  // namespace trellant::compound
