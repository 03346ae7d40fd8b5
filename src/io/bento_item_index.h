// SPDX-License-Identifier: Apache-2.0
// The items of a table of contents, ordered so that those of an object, and of one of its
// properties, lie together.
#pragma once

#include "bento_item_list.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace trellant {

class BentoItemIndex {
  public:
    using Run = std::span<const BentoPackedItem>;

    BentoItemIndex() = default;
    /// Takes items in table order.
    explicit BentoItemIndex(BentoItemList items);

    [[nodiscard]] std::size_t itemCount() const noexcept { return items_.size(); }

    /// The items of one value, in table order; empty when there are none.
    [[nodiscard]] Run find(std::uint32_t object, std::uint32_t property) const noexcept;

    /// Every distinct object, ascending.
    [[nodiscard]] std::span<const std::uint32_t> objects() const noexcept { return objects_; }
    /// The position of `object` in objects().
    [[nodiscard]] std::optional<std::size_t> rank(std::uint32_t object) const noexcept;

  private:
    /// Sorts each object's items and notes where they begin; false when the table does not keep
    /// them together, in ascending order of objects.
    bool collectObjects();
    void buildTables();
    /// The items of an object; empty when there are none.
    [[nodiscard]] Run runOf(std::uint32_t object) const noexcept;

    /// By object, property and place in the table.
    BentoItemList items_;
    std::vector<std::uint32_t> objects_;
    /// Object number, less the smallest, to rank; empty when the numbers lie too far apart.
    std::vector<std::uint32_t> rankTable_;
    /// Where the items of each object begin, and the end after the last: by number, less the
    /// smallest, when there is a rank table, else by rank.
    std::vector<std::uint32_t> firstPlaces_;
};

}  // namespace trellant
