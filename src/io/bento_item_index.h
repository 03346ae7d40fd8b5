// Finds the items of an object, and of one of its properties, in a table of contents. Holds
// positions only; the items stay in table order.
#pragma once

#include "bento_packed_item.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace trellant {

class BentoItemIndex {
  public:
    /// A run of the index; its places resolve through position().
    struct Run {
        std::size_t begin = 0;
        std::size_t end = 0;
        [[nodiscard]] bool empty() const noexcept { return begin == end; }
    };

    BentoItemIndex() = default;
    /// `items` must live, unmoved, as long as the index.
    explicit BentoItemIndex(std::span<const BentoPackedItem> items);

    /// The items of one value, in table order; empty when there are none.
    [[nodiscard]] Run find(std::uint32_t object, std::uint32_t property) const noexcept;
    [[nodiscard]] const BentoPackedItem& item(std::size_t place) const noexcept {
        return items_[order_.empty() ? place : order_[place]];
    }

    /// Every distinct object, ascending.
    [[nodiscard]] std::span<const std::uint32_t> objects() const noexcept { return objects_; }
    /// The position of `object` in objects().
    [[nodiscard]] std::optional<std::size_t> rank(std::uint32_t object) const noexcept;

  private:
    void sortPlaces();
    void collectObjects();
    void buildRankTable();
    [[nodiscard]] std::size_t firstPlaceNotBelow(Run run, std::uint32_t property) const noexcept;

    std::span<const BentoPackedItem> items_;
    /// Item positions by object, property and table position; empty when the table stands so.
    std::vector<std::uint32_t> order_;
    std::vector<std::uint32_t> objects_;
    /// The first place of each object, and the end after the last.
    std::vector<std::uint32_t> firstPlaces_;
    /// Object number, less the smallest, to rank; empty when the numbers lie too far apart.
    std::vector<std::uint32_t> rankTable_;
};

}  // namespace trellant
