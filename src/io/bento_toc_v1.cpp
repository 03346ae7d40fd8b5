// SPDX-License-Identifier: Apache-2.0
// The strict reading of a table of entries: any fault refuses all of it.
#include "bento_toc.h"

#include <trellant/io/bento_toc_entries.h>
#include <trellant/io/errors.h>

namespace trellant {

BentoItemList decodeTocV1(ByteView toc, OMFByteOrder order) {
    if (toc.size() % BentoEntry::size != 0) {
        throw OMFIOError::malformed("Bento 1.0d4 TOC is not a multiple of 24 bytes");
    }
    BentoItemList items;
    items.reserve(toc.size() / BentoEntry::size);
    for (std::size_t offset = 0; offset < toc.size(); offset += BentoEntry::size) {
        const BentoEntry entry(toc.data() + offset, order);
        if (entry.isTooLong()) {
            throw OMFIOError::malformed("V1 immediate value longer than 4 bytes");
        }
        items.append(entry.item());
    }
    return items;
}

}  // namespace trellant
