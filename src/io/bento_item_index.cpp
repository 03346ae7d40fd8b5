// SPDX-License-Identifier: Apache-2.0
#include "bento_item_index.h"

#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>

namespace trellant {

namespace {

/// Runs up to this length are walked rather than halved.
constexpr std::size_t linearRun = 8;
constexpr std::uint32_t noRank = std::numeric_limits<std::uint32_t>::max();
/// The tables by object number may hold this many entries an object, and this many at any rate.
constexpr std::uint64_t tableFactor = 8;
constexpr std::uint64_t tableFloor = 1024;

/// Runs up to this length are sorted by insertion: most objects have a handful of items.
constexpr std::size_t shortRun = 32;

bool byProperty(const BentoPackedItem& left, const BentoPackedItem& right) {
    return left.property < right.property;
}

bool byObjectAndProperty(const BentoPackedItem& left, const BentoPackedItem& right) {
    return std::tie(left.object, left.property) < std::tie(right.object, right.property);
}

/// Orders the items of one object by property, those of one property as they stand.
void sortRun(std::span<BentoPackedItem> run) {
    if (run.size() > shortRun) {
        std::stable_sort(run.begin(), run.end(), byProperty);
        return;
    }
    for (std::size_t sorted = 1; sorted < run.size(); ++sorted) {
        const BentoPackedItem item = run[sorted];
        std::size_t place = sorted;
        for (; place > 0 && byProperty(item, run[place - 1]); --place) {
            run[place] = run[place - 1];
        }
        run[place] = item;
    }
}

/// How many of the items of one object belong to a property below `property`.
std::size_t countBelow(BentoItemIndex::Run run, std::uint32_t property) noexcept {
    std::size_t begin = 0;
    std::size_t end = run.size();
    while (end - begin > linearRun) {
        const std::size_t middle = begin + (end - begin) / 2;
        if (run[middle].property < property) {
            begin = middle + 1;
        } else {
            end = middle;
        }
    }
    while (begin < end && run[begin].property < property) {
        ++begin;
    }
    return begin;
}

}  // namespace

BentoItemIndex::BentoItemIndex(BentoItemList items) : items_(std::move(items)) {
    if (!collectObjects()) {
        const auto all = items_.items();
        std::stable_sort(all.begin(), all.end(), byObjectAndProperty);
        objects_.clear();
        firstPlaces_.clear();
        collectObjects();
    }
    buildTables();
}

bool BentoItemIndex::collectObjects() {
    const auto items = items_.items();
    for (std::size_t begin = 0; begin < items.size();) {
        const std::uint32_t object = items[begin].object;
        if (!objects_.empty() && objects_.back() > object) {
            return false;
        }
        bool inOrder = true;
        std::size_t end = begin + 1;
        for (; end < items.size() && items[end].object == object; ++end) {
            inOrder = inOrder && items[end - 1].property <= items[end].property;
        }
        if (!inOrder) {
            sortRun(items.subspan(begin, end - begin));
        }
        objects_.push_back(object);
        firstPlaces_.push_back(static_cast<std::uint32_t>(begin));
        begin = end;
    }
    firstPlaces_.push_back(static_cast<std::uint32_t>(items.size()));
    return true;
}

void BentoItemIndex::buildTables() {
    if (objects_.empty()) {
        return;
    }
    const std::uint64_t span = std::uint64_t{objects_.back()} - objects_.front() + 1;
    if (span > tableFactor * objects_.size() + tableFloor) {
        return;
    }
    rankTable_.assign(span, noRank);
    for (std::size_t rank = 0; rank < objects_.size(); ++rank) {
        rankTable_[objects_[rank] - objects_.front()] = static_cast<std::uint32_t>(rank);
    }
    // Numbers without an object get an empty run, so that a lookup need not tell them apart.
    std::vector<std::uint32_t> places(span + 1, firstPlaces_.back());
    std::uint32_t place = firstPlaces_.back();
    for (std::size_t number = span; number-- > 0;) {
        if (rankTable_[number] != noRank) {
            place = firstPlaces_[rankTable_[number]];
        }
        places[number] = place;
    }
    firstPlaces_ = std::move(places);
}

std::optional<std::size_t> BentoItemIndex::rank(std::uint32_t object) const noexcept {
    if (!rankTable_.empty()) {
        // Numbers below the first wrap round to ones beyond the last.
        const std::uint32_t number = object - objects_.front();
        if (number >= rankTable_.size() || rankTable_[number] == noRank) {
            return std::nullopt;
        }
        return rankTable_[number];
    }
    const auto found = std::lower_bound(objects_.begin(), objects_.end(), object);
    return found != objects_.end() && *found == object
               ? std::optional(static_cast<std::size_t>(found - objects_.begin()))
               : std::nullopt;
}

BentoItemIndex::Run BentoItemIndex::runOf(std::uint32_t object) const noexcept {
    std::size_t entry = 0;
    if (!rankTable_.empty()) {
        entry = object - objects_.front();
        if (entry >= rankTable_.size()) {
            return {};
        }
    } else if (const auto found = rank(object)) {
        entry = *found;
    } else {
        return {};
    }
    const std::size_t begin = firstPlaces_[entry];
    return items_.items().subspan(begin, firstPlaces_[entry + 1] - begin);
}

BentoItemIndex::Run BentoItemIndex::find(std::uint32_t object,
                                         std::uint32_t property) const noexcept {
    const Run all = runOf(object);
    const Run from = all.subspan(countBelow(all, property));
    if (from.empty() || from.front().property != property) {
        return {};
    }
    if (property == std::numeric_limits<std::uint32_t>::max()) {
        return from;
    }
    return from.first(countBelow(from, property + 1));
}

}  // namespace trellant
