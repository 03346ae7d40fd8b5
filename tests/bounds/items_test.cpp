// SPDX-License-Identifier: Apache-2.0
// Tables of contents that make the most of their bytes: the smallest items, the smallest objects.
//
// Bound: 8 bytes for each byte of the table, and a constant. An item takes 32 bytes. The smallest
// that is kept takes 5 of the table, which is in memory beside the items until all are read:
// 1 + 32 / 5 = 7.4. The smallest object takes 14, 13 that name it and 1 for an empty value; it has
// an item, 4 bytes each in the lists of objects and of their items, which double their room, and 32
// bytes in each of the two tables by number where every eighth number is used: 112 / 14 = 8.
// Sorting takes half the items once more, before there are those tables: (32 * 1.5 + 8 + 8) / 14
// = 4.6.
#include "bounds_fixture.h"
#include "growing_file.h"
#include "worker_fixture.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace trellant::testing {
namespace {

constexpr std::uint64_t itemBytes = 32;
constexpr std::string_view anyWord = "word";
/// That no name stands for.
constexpr std::uint32_t anyProperty = 1000;

class SmallestItems : public BoundsTest {
  protected:
    static constexpr std::uint64_t tokenBytes_ = 5;

    /// Gives the bytes of the table.
    std::uint64_t writeItems(std::uint64_t count) const {
        GrowingFile table(file());
        table.object(1, anyProperty);
        for (std::uint64_t i = 0; i < count; ++i) {
            table.immediate(anyWord);
        }
        const auto bytes = table.tableBytes();
        table.finish();
        return bytes;
    }
};

TEST_F(SmallestItems, OfOneValueTakeThirtyTwoBytesEachBesideTheTable) {
    const std::uint64_t count = sanitized ? 500'000 : 12'000'000;
    const auto table = writeItems(count);
    // The room for items grows by half each time, in place.
    const auto run = inspect(table + count * itemBytes * 3 / 2 + addressBase);
    expectFailed(run, openingLines(), noModel);
    expectPeak(run, "SmallestItems", table + count * itemBytes + base);
}

TEST_F(SmallestItems, BeyondTheLimitAreOutOfMemory) {
    const std::uint64_t count = 12'000'000;
    if (sanitized) {
        GTEST_SKIP() << "needs a limit of memory";
    }
    const auto table = writeItems(count);
    expectFailed(inspect(table + count * itemBytes / 2), openingLines(), outOfMemory);
}

TEST_F(SmallestItems, InTheLargestTableAreOutOfMemoryAtAGibibyte) {
    if (sanitized) {
        GTEST_SKIP() << "needs a limit of memory";
    }
    writeItems((512 * mebibyte - 13) / tokenBytes_);
    const auto run = inspect(1024 * mebibyte);
    expectFailed(run, openingLines(), outOfMemory);
    expectPeak(run, "SmallestItemsInTheLargestTable", 1024 * mebibyte);
}

class SmallestObjects : public BoundsTest {
  protected:
    SmallestObjects() : numbers_(sanitized ? 100'000 : 2'000'000) {
        // Every eighth number: the tables by number are made up to there, and largest.
        std::uint32_t next = 0;
        for (std::uint32_t& number : numbers_) {
            number = next;
            next += 8;
        }
    }
    void expectBounded(std::string_view shape) const {
        GrowingFile table(file());
        for (const std::uint32_t number : numbers_) {
            table.object(number, anyProperty);
            table.emptyImmediate();
        }
        table.finish();
        const std::uint64_t bound = numbers_.size() * bytesEach_ + base;
        const auto run = inspect(2 * bound);
        expectFailed(run, openingLines(), noModel);
        expectPeak(run, shape, bound);
        if (!sanitized) {
            expectFailed(inspect(bound / 2), openingLines(), outOfMemory);
        }
    }

    std::vector<std::uint32_t> numbers_;

  private:
    static constexpr std::uint64_t bytesEach_ = itemBytes + 8 + 8 + 32 + 32;
};

TEST_F(SmallestObjects, AscendingAreBounded) {
    expectBounded("ObjectsAscending");
}

TEST_F(SmallestObjects, DescendingAreBounded) {
    std::reverse(numbers_.begin(), numbers_.end());
    expectBounded("ObjectsDescending");
}

TEST_F(SmallestObjects, InNoOrderAreBounded) {
    std::shuffle(numbers_.begin(), numbers_.end(), std::mt19937(17));
    expectBounded("ObjectsInNoOrder");
}

/// A million items of one object beside those of a small document: 10 bytes of the table each, an
/// item, and half of all items again for sorting them.
class ManyItemsOfOneObject : public BoundsTest {
  protected:
    static constexpr std::uint32_t count_ = sanitized ? 100'000 : 1'000'000;

    void expectAnswered(std::string_view shape) const {
        const std::uint64_t bound = count_ * itemBytes * 3 / 2 + base;
        const auto run = inspect(count_ * itemBytes * 5 / 2 + addressBase);
        EXPECT_EQ(run.output, smallAnswer());
        expectPeak(run, shape, bound);
    }
};

TEST_F(ManyItemsOfOneObject, OfOtherPropertiesBackwardsLeaveTheAnswerAsItWas) {
    GrowingFile table(file(), oneClipDocument().image());
    constexpr std::uint32_t clip = 9;
    table.object(clip, anyProperty);
    for (std::uint32_t i = count_; i > 0; --i) {
        table.property(anyProperty + i);
        table.emptyImmediate();
    }
    table.finish();
    expectAnswered("PropertiesOfAClip");
}

TEST_F(ManyItemsOfOneObject, OfAnObjectThatNobodyKnowsLeaveTheAnswerAsItWas) {
    GrowingFile table(file(), oneClipDocument().image());
    table.object(2'000'000, anyProperty);
    for (std::uint32_t i = count_; i > 0; --i) {
        table.property(anyProperty + i);
        table.emptyImmediate();
    }
    table.finish();
    expectAnswered("PropertiesOfAnUnknownObject");
}

}  // namespace
}  // namespace trellant::testing
