#include "bento_item_index.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <tuple>

namespace trellant {

namespace {

/// Runs up to this length are walked rather than halved.
constexpr std::size_t linearRun = 8;
constexpr std::uint32_t noRank = std::numeric_limits<std::uint32_t>::max();
/// The rank table may be this much larger than the items, and this much at any rate.
constexpr std::uint64_t rankTableFactor = 8;
constexpr std::uint64_t rankTableFloor = 65'536;

bool inKeyOrder(const BentoPackedItem& left, const BentoPackedItem& right) {
    return std::tie(left.object, left.property) <= std::tie(right.object, right.property);
}

bool inObjectOrder(const BentoPackedItem& left, const BentoPackedItem& right) {
    return left.object <= right.object;
}

template <typename Relation>
bool holdsThroughout(std::span<const BentoPackedItem> items, Relation inOrder) {
    return std::adjacent_find(items.begin(), items.end(), [&](const auto& left, const auto& right) {
               return !inOrder(left, right);
           }) == items.end();
}

}  // namespace

BentoItemIndex::BentoItemIndex(std::span<const BentoPackedItem> items) : items_(items) {
    sortPlaces();
    collectObjects();
    buildRankTable();
}

void BentoItemIndex::sortPlaces() {
    if (holdsThroughout(items_, inKeyOrder)) {
        return;
    }
    order_.resize(items_.size());
    std::iota(order_.begin(), order_.end(), 0U);
    const auto byKey = [&](std::uint32_t left, std::uint32_t right) {
        const BentoPackedItem& a = items_[left];
        const BentoPackedItem& b = items_[right];
        return std::tie(a.object, a.property, left) < std::tie(b.object, b.property, right);
    };
    if (!holdsThroughout(items_, inObjectOrder)) {
        std::sort(order_.begin(), order_.end(), byKey);
        return;
    }
    // Written files keep each object's items together: many short sorts instead of one long one.
    for (auto begin = order_.begin(); begin != order_.end();) {
        const std::uint32_t object = items_[*begin].object;
        const auto end = std::find_if(begin, order_.end(), [&](std::uint32_t position) {
            return items_[position].object != object;
        });
        std::sort(begin, end, byKey);
        begin = end;
    }
}

void BentoItemIndex::collectObjects() {
    for (std::size_t place = 0; place < items_.size(); ++place) {
        const std::uint32_t object = item(place).object;
        if (objects_.empty() || objects_.back() != object) {
            objects_.push_back(object);
            firstPlaces_.push_back(static_cast<std::uint32_t>(place));
        }
    }
    firstPlaces_.push_back(static_cast<std::uint32_t>(items_.size()));
}

void BentoItemIndex::buildRankTable() {
    if (objects_.empty()) {
        return;
    }
    const std::uint64_t span = std::uint64_t{objects_.back()} - objects_.front() + 1;
    if (span > rankTableFactor * items_.size() + rankTableFloor) {
        return;
    }
    rankTable_.assign(span, noRank);
    for (std::size_t rank = 0; rank < objects_.size(); ++rank) {
        rankTable_[objects_[rank] - objects_.front()] = static_cast<std::uint32_t>(rank);
    }
}

std::optional<std::size_t> BentoItemIndex::rank(std::uint32_t object) const noexcept {
    if (objects_.empty() || object < objects_.front() || object > objects_.back()) {
        return std::nullopt;
    }
    if (!rankTable_.empty()) {
        const std::uint32_t rank = rankTable_[object - objects_.front()];
        return rank == noRank ? std::nullopt : std::optional<std::size_t>(rank);
    }
    const auto found = std::lower_bound(objects_.begin(), objects_.end(), object);
    return *found == object ? std::optional(static_cast<std::size_t>(found - objects_.begin()))
                            : std::nullopt;
}

std::size_t BentoItemIndex::firstPlaceNotBelow(Run run, std::uint32_t property) const noexcept {
    while (run.end - run.begin > linearRun) {
        const std::size_t middle = run.begin + (run.end - run.begin) / 2;
        if (item(middle).property < property) {
            run.begin = middle + 1;
        } else {
            run.end = middle;
        }
    }
    while (run.begin < run.end && item(run.begin).property < property) {
        ++run.begin;
    }
    return run.begin;
}

BentoItemIndex::Run BentoItemIndex::find(std::uint32_t object,
                                         std::uint32_t property) const noexcept {
    const std::optional<std::size_t> found = rank(object);
    if (!found) {
        return {};
    }
    const Run all{firstPlaces_[*found], firstPlaces_[*found + 1]};
    const std::size_t begin = firstPlaceNotBelow(all, property);
    if (begin == all.end || item(begin).property != property) {
        return {};
    }
    if (property == std::numeric_limits<std::uint32_t>::max()) {
        return {begin, all.end};
    }
    return {begin, firstPlaceNotBelow({begin, all.end}, property + 1)};
}

}  // namespace trellant
