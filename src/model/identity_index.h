// SPDX-License-Identifier: Apache-2.0
// Which element of a list has an identity: looked up for every event of a timeline, so without an
// allocation for each element.
#pragma once

#include <trellant/base/keyed_hash.h>

#include <bit>
#include <cstddef>
#include <string_view>
#include <vector>

namespace trellant {

/// Elements by their member `id`; of equal ones, the first. The list must outlive the index.
template <class Element>
class IdentityIndex {
  public:
    explicit IdentityIndex(const std::vector<Element>& elements)
        : elements_(elements), slots_(std::bit_ceil(2 * elements.size() + 1)) {}

    /// False when an element with that identity was added before.
    [[nodiscard]] bool add(std::size_t position) {
        const std::string_view id = elements_[position].id;
        const std::size_t hash = KeyedHash{}(id);
        Slot& slot = slots_[slotOf(id, hash)];
        if (slot.count != 0) {
            return false;
        }
        slot = {hash, position + 1};
        return true;
    }

    /// The element with this identity among those added; null when there is none.
    [[nodiscard]] const Element* find(std::string_view id) const {
        const Slot& slot = slots_[slotOf(id, KeyedHash{}(id))];
        return slot.count == 0 ? nullptr : &elements_[slot.count - 1];
    }

  private:
    struct Slot {
        std::size_t hash = 0;
        /// The element's place in the list, from 1; 0 in a free slot.
        std::size_t count = 0;
    };

    /// The slot of the identity, or the free one where it belongs. More than half of them are free.
    [[nodiscard]] std::size_t slotOf(std::string_view id, std::size_t hash) const {
        const std::size_t mask = slots_.size() - 1;
        std::size_t at = hash & mask;
        while (slots_[at].count != 0 &&
               (slots_[at].hash != hash || elements_[slots_[at].count - 1].id != id)) {
            at = (at + 1) & mask;
        }
        return at;
    }

    const std::vector<Element>& elements_;
    std::vector<Slot> slots_;
};

}  // namespace trellant
