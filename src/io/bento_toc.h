// SPDX-License-Identifier: Apache-2.0
// The two written forms of a table of contents, decoded into items in table order.
#pragma once

#include "bento_item_list.h"

#include <trellant/io/byte_readers.h>

#include <cstdint>

namespace trellant {

/// What becomes of items that add no bytes to a value of which a piece (no reference list) is
/// already there.
enum class EmptyPieces {
    /// Each is an item.
    kept,
    /// They are left out: each takes one byte of a table but thirty-two of memory.
    dropped,
};

/// The compressed form; `blockSize` in bytes. Throws OMFIOError malformed.
[[nodiscard]] BentoItemList decodeCompressedToc(ByteView toc, OMFByteOrder order,
                                                std::uint32_t blockSize, EmptyPieces emptyPieces);

/// The 1.0d4 form, fixed entries of 24 bytes. Throws OMFIOError malformed.
[[nodiscard]] BentoItemList decodeTocV1(ByteView toc, OMFByteOrder order);

}  // namespace trellant
