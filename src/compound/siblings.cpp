// SPDX-License-Identifier: Apache-2.0
#include "siblings.h"

#include "names.h"

#include <algorithm>
#include <bit>
#include <compare>
#include <span>

namespace trellant::compound {

namespace {

/// The entries of all storages, those of one beside each other, in the order that they were added.
struct Groups {
    std::vector<std::uint32_t> members;
    /// Where each entry's own members begin; one more at the end.
    std::vector<std::size_t> begins;
};

Groups groupByParent(const std::deque<Entry>& entries) {
    Groups groups{.members = std::vector<std::uint32_t>(entries.size() - 1),
                  .begins = std::vector<std::size_t>(entries.size() + 1)};
    for (std::size_t index = 1; index < entries.size(); ++index) {
        ++groups.begins[entries[index].parent + 1];
    }
    for (std::size_t index = 0; index < entries.size(); ++index) {
        groups.begins[index + 1] += groups.begins[index];
    }
    std::vector<std::size_t> next(groups.begins.begin(), groups.begins.end() - 1);
    for (std::size_t index = 1; index < entries.size(); ++index) {
        groups.members[next[entries[index].parent]++] = static_cast<std::uint32_t>(index);
    }
    return groups;
}

class Linker {
  public:
    explicit Linker(const Tree& tree) : tree_(tree), links_(tree.entries.size()) {}

    void linkMembers(std::uint32_t storage, std::span<std::uint32_t> members) {
        sort(members);
        const auto completeLevels = static_cast<unsigned>(std::bit_width(members.size() + 1)) - 1;
        links_[storage].child = linkHalves(members, completeLevels);
    }

    [[nodiscard]] std::vector<EntryLinks> take() { return std::move(links_); }

  private:
    [[nodiscard]] std::u16string_view nameOf(std::uint32_t entry) const noexcept {
        return tree_.nameOf(tree_.entries[entry]);
    }

    void sort(std::span<std::uint32_t> members) const {
        const auto precedes = [this](std::uint32_t left, std::uint32_t right) {
            return std::is_lt(compareNames(nameOf(left), nameOf(right)));
        };
        // Lists are mostly added in their order.
        if (!std::is_sorted(members.begin(), members.end(), precedes)) {
            std::sort(members.begin(), members.end(), precedes);
        }
        const auto same = std::adjacent_find(
            members.begin(), members.end(),
            [&](std::uint32_t left, std::uint32_t right) { return !precedes(left, right); });
        if (same != members.end()) {
            throw CompoundError(CompoundError::DuplicateName{std::u16string(nameOf(*same))});
        }
    }

    /// The root of a tree of `sorted`, whose middle comes to stand `blackLevels` above the first
    /// level that is not complete in the whole tree.
    std::uint32_t linkHalves(std::span<const std::uint32_t> sorted, unsigned blackLevels) {
        if (sorted.empty()) {
            return noEntry;
        }
        const std::size_t middle = sorted.size() / 2;
        const std::uint32_t root = sorted[middle];
        const unsigned below = blackLevels == 0 ? 0 : blackLevels - 1;
        links_[root].isRed = blackLevels == 0;
        links_[root].left = linkHalves(sorted.first(middle), below);
        links_[root].right = linkHalves(sorted.subspan(middle + 1), below);
        return root;
    }

    const Tree& tree_;
    std::vector<EntryLinks> links_;
};

}  // namespace

std::vector<EntryLinks> linkSiblings(const Tree& tree) {
    Groups groups = groupByParent(tree.entries);
    Linker linker(tree);
    for (std::size_t storage = 0; storage < tree.entries.size(); ++storage) {
        const std::size_t begin = groups.begins[storage];
        const std::size_t count = groups.begins[storage + 1] - begin;
        linker.linkMembers(static_cast<std::uint32_t>(storage),
                           std::span(groups.members).subspan(begin, count));
    }
    return linker.take();
}

}  // namespace trellant::compound
