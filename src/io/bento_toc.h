// The two written forms of a table of contents, decoded from bytes into items in table order.
#pragma once

#include "bento_packed_item.h"

#include <trellant/io/byte_readers.h>

#include <cstdint>
#include <vector>

namespace trellant {

/// The compressed form; `blockSize` in bytes. Throws OMFIOError malformed.
[[nodiscard]] std::vector<BentoPackedItem> decodeCompressedToc(ByteView toc, OMFByteOrder order,
                                                               std::uint32_t blockSize);

/// The 1.0d4 form, fixed entries of 24 bytes. Throws OMFIOError malformed.
[[nodiscard]] std::vector<BentoPackedItem> decodeTocV1(ByteView toc, OMFByteOrder order);

}  // namespace trellant
