// SPDX-License-Identifier: Apache-2.0
// A table of contents item by item, as far as it makes sense.
#pragma once

#include <trellant/io/bento_packed_item.h>
#include <trellant/io/bento_types.h>
#include <trellant/io/random_access_file.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace trellant::cli {

/// Where a table stops making sense.
struct TocFault {
    /// Bytes from the table's first.
    std::uint64_t offset = 0;
    std::string text;
    bool operator==(const TocFault&) const = default;
};

/// Takes the next item; false to see no more.
using TocTaker = std::function<bool(const BentoPackedItem&)>;

/// Hands out the items of the table that `footer` names, in its order, holding little of it in
/// memory. A table that leaves the file is read to the file's end. Gives the fault that ended it.
[[nodiscard]] std::optional<TocFault> readToc(const RandomAccessFile& file,
                                              const BentoFooter& footer, const TocTaker& take);

}  // namespace trellant::cli
