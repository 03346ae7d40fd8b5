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
#include "bento_toc.h"

#include <trellant/base/byte_load.h>
#include <trellant/io/errors.h>

namespace trellant {

namespace {

constexpr std::size_t entrySize = 24;
constexpr std::uint32_t immediateLimit = 4;
constexpr unsigned immediateFlag = 1U << 0U;
constexpr unsigned continuedFlag = 1U << 1U;

BentoPackedItem decodeEntry(const std::byte* entry, OMFByteOrder order) {
    BentoPackedItem item;
    item.object = loadUnsigned<std::uint32_t>(entry, order);
    item.property = loadUnsigned<std::uint32_t>(entry + 4, order);
    item.type = loadUnsigned<std::uint32_t>(entry + 8, order);
    item.generation = loadUnsigned<std::uint16_t>(entry + 20, order);
    const auto length = loadUnsigned<std::uint32_t>(entry + 16, order);
    const unsigned flags = loadUnsigned<std::uint16_t>(entry + 22, order);
    item.continued = (flags & continuedFlag) != 0;
    if ((flags & immediateFlag) == 0) {
        item.kind = BentoPackedItem::Kind::range;
        item.offset = loadUnsigned<std::uint32_t>(entry + 12, order);
        item.length = length;
        return item;
    }
    if (length > immediateLimit) {
        throw OMFIOError::malformed("V1 immediate value longer than 4 bytes");
    }
    item.setImmediate(entry + 12, length);
    return item;
}

}  // namespace

BentoItemList decodeTocV1(ByteView toc, OMFByteOrder order) {
    if (toc.size() % entrySize != 0) {
        throw OMFIOError::malformed("Bento 1.0d4 TOC is not a multiple of 24 bytes");
    }
    BentoItemList items;
    items.reserve(toc.size() / entrySize);
    for (std::size_t offset = 0; offset < toc.size(); offset += entrySize) {
        items.append(decodeEntry(toc.data() + offset, order));
    }
    return items;
}

}  // namespace trellant
