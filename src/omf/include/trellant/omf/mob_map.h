// SPDX-License-Identifier: Apache-2.0
// From a mob's identifier to an object. Sorted, not hashed: identifiers are chosen by whoever wrote
// the file, and no choice of them makes it slow.
#pragma once

#include <trellant/omf/values.h>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

class OMFMobMap {
  public:
    using value_type = std::pair<OMFUID, OMFObject>;
    using const_iterator = std::vector<value_type>::const_iterator;

    OMFMobMap() = default;
    /// Of several entries with one identifier the last.
    explicit OMFMobMap(std::vector<value_type> entries) : entries_(std::move(entries)) {
        std::stable_sort(entries_.begin(), entries_.end(),
                         [](const value_type& left, const value_type& right) {
                             return left.first < right.first;
                         });
        std::size_t kept = 0;
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            if (i + 1 == entries_.size() || entries_[i].first != entries_[i + 1].first) {
                entries_[kept++] = entries_[i];
            }
        }
        entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(kept), entries_.end());
    }

    /// Ascending by identifier.
    [[nodiscard]] const_iterator begin() const noexcept { return entries_.begin(); }
    [[nodiscard]] const_iterator end() const noexcept { return entries_.end(); }
    [[nodiscard]] std::size_t size() const noexcept { return entries_.size(); }
    [[nodiscard]] bool empty() const noexcept { return entries_.empty(); }

    /// end() when there is none.
    [[nodiscard]] const_iterator find(const OMFUID& mobID) const noexcept {
        const auto found = std::lower_bound(
            entries_.begin(), entries_.end(), mobID,
            [](const value_type& entry, const OMFUID& wanted) { return entry.first < wanted; });
        return found != entries_.end() && found->first == mobID ? found : entries_.end();
    }

  private:
    std::vector<value_type> entries_;
};

}  // namespace trellant
