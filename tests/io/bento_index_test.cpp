// SPDX-License-Identifier: Apache-2.0
#include "bento_item_index.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>
#include <set>

namespace trellant {
namespace {

using Items = std::vector<BentoPackedItem>;
using Lengths = std::vector<std::uint64_t>;

constexpr std::uint32_t largest = std::numeric_limits<std::uint32_t>::max();

/// An item whose length tells which one it is.
BentoPackedItem item(std::uint32_t object, std::uint32_t property, std::uint64_t label) {
    BentoPackedItem result;
    result.object = object;
    result.property = property;
    result.kind = BentoPackedItem::Kind::range;
    result.length = label;
    return result;
}

BentoItemIndex indexOf(const Items& items) {
    BentoItemList list;
    for (const BentoPackedItem& one : items) {
        list.append(one);
    }
    return BentoItemIndex(std::move(list));
}

Lengths labels(const BentoItemIndex& index, std::uint32_t object, std::uint32_t property) {
    Lengths result;
    for (const BentoPackedItem& found : index.find(object, property)) {
        result.push_back(found.length);
    }
    return result;
}

std::vector<std::uint32_t> objectsOf(const BentoItemIndex& index) {
    return {index.objects().begin(), index.objects().end()};
}

/// Every key of `items`, and keys beside them, against a plain walk over the table.
void expectAgreesWithTheTable(const Items& items) {
    const BentoItemIndex index = indexOf(items);
    std::map<std::pair<std::uint32_t, std::uint32_t>, Lengths> expected;
    std::set<std::uint32_t> objects;
    for (const BentoPackedItem& one : items) {
        expected[{one.object, one.property}].push_back(one.length);
        expected.try_emplace({one.object, one.property + 1});
        expected.try_emplace({one.object + 1, one.property});
        objects.insert(one.object);
    }
    for (const auto& [key, lengths] : expected) {
        ASSERT_EQ(labels(index, key.first, key.second), lengths);
    }
    ASSERT_EQ(objectsOf(index), std::vector<std::uint32_t>(objects.begin(), objects.end()));
    std::size_t rank = 0;
    for (const std::uint32_t object : objects) {
        ASSERT_EQ(index.rank(object), rank++);
        ASSERT_EQ(index.rank(object + 1).has_value(), objects.contains(object + 1));
    }
}

Items randomItems(std::uint32_t seed, std::size_t count, std::uint32_t objectStep) {
    std::mt19937 generator(seed);
    const auto below = [&](std::uint32_t limit) {
        return static_cast<std::uint32_t>(generator() % limit);
    };
    Items items;
    for (std::size_t index = 0; index < count; ++index) {
        items.push_back(item(below(97) * objectStep, below(13), index));
    }
    return items;
}

TEST(BentoItemIndex, OfAnEmptyTableFindsNothing) {
    const BentoItemIndex index = indexOf({});
    EXPECT_TRUE(index.find(0, 0).empty());
    EXPECT_TRUE(index.objects().empty());
    EXPECT_EQ(index.rank(0), std::nullopt);
}

TEST(BentoItemIndex, KeepsTableOrderWithinAKey) {
    const Items items{item(2, 5, 0), item(1, 9, 1), item(2, 5, 2), item(2, 4, 3), item(2, 5, 4)};
    const BentoItemIndex index = indexOf(items);
    EXPECT_EQ(labels(index, 2, 5), (Lengths{0, 2, 4}));
    EXPECT_EQ(labels(index, 2, 4), (Lengths{3}));
    EXPECT_EQ(labels(index, 1, 9), (Lengths{1}));
    EXPECT_EQ(labels(index, 1, 5), Lengths{});
    EXPECT_EQ(labels(index, 3, 5), Lengths{});
}

TEST(BentoItemIndex, FindsTheExtremeNumbers) {
    const Items items{item(largest, largest, 0), item(0, 0, 1), item(largest, 0, 2),
                      item(0, largest, 3), item(largest, largest, 4)};
    const BentoItemIndex index = indexOf(items);
    EXPECT_EQ(labels(index, largest, largest), (Lengths{0, 4}));
    EXPECT_EQ(labels(index, largest, 0), (Lengths{2}));
    EXPECT_EQ(labels(index, 0, largest), (Lengths{3}));
    EXPECT_EQ(labels(index, 0, 0), (Lengths{1}));
    EXPECT_EQ(objectsOf(index), (std::vector<std::uint32_t>{0, largest}));
    EXPECT_EQ(index.rank(largest), 1U);
    EXPECT_EQ(index.rank(largest - 1), std::nullopt);
}

TEST(BentoItemIndex, AgreesWithAWalkOverTheTableWhateverItsOrder) {
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        Items items = randomItems(seed, 500, 1);
        expectAgreesWithTheTable(items);
        const auto byObject = [](const auto& a, const auto& b) { return a.object < b.object; };
        std::stable_sort(items.begin(), items.end(), byObject);
        expectAgreesWithTheTable(items);
        const auto byKey = [](const auto& a, const auto& b) {
            return std::pair(a.object, a.property) < std::pair(b.object, b.property);
        };
        std::stable_sort(items.begin(), items.end(), byKey);
        expectAgreesWithTheTable(items);
    }
}

TEST(BentoItemIndex, AgreesWithAWalkWhenObjectNumbersLieFarApart) {
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        expectAgreesWithTheTable(randomItems(seed, 500, 40'000'000));
    }
}

TEST(BentoItemIndex, NumbersBesideThoseOfATableFindNothing) {
    const BentoItemIndex index = indexOf({item(10, 1, 0), item(12, 1, 1)});
    for (const std::uint32_t object : {0U, 9U, 11U, 13U, largest}) {
        EXPECT_TRUE(index.find(object, 1).empty()) << object;
        EXPECT_EQ(index.rank(object), std::nullopt) << object;
    }
}

TEST(BentoItemIndex, AnObjectWithAMillionItemsIsNotWalked) {
    constexpr std::uint32_t count = 1'000'000;
    Items items;
    for (std::uint32_t index = 0; index < count; ++index) {
        items.push_back(item(7, count - index, index));
    }
    const BentoItemIndex index = indexOf(items);
    // A walk for each of these would be 10^12 steps.
    for (std::uint32_t property = 1; property <= count; ++property) {
        const BentoItemIndex::Run run = index.find(7, property);
        ASSERT_EQ(run.size(), 1U);
        ASSERT_EQ(run.front().length, count - property);
    }
}

}  // namespace
}  // namespace trellant
