// SPDX-License-Identifier: Apache-2.0
// Trees of siblings: every size up to a hundred, and very many.
#include "written.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <random>

namespace trellant::compound {
namespace {

std::u16string nameOf(unsigned number) {
    const std::string digits = std::to_string(number);
    return u"Components-1001{" + std::u16string(digits.begin(), digits.end()) + u"}";
}

CompoundFile fileWith(unsigned siblings) {
    CompoundFile file = newFile();
    for (unsigned index = 0; index < siblings; ++index) {
        file.addStorage(Storage::root, nameOf(index));
    }
    return file;
}

TEST(CompoundSiblings, TreesOfEverySizeUpToAHundredKeepTheRules) {
    for (unsigned count = 1; count <= 100; ++count) {
        const Written written(fileWith(count));
        EXPECT_EQ(written.reader->entries()[0].members.size(), count);
        // No tree of so many is flatter.
        EXPECT_EQ(written.reader->depthOf(0), static_cast<unsigned>(std::bit_width(count)));
    }
}

unsigned redOnes(const Written& written) {
    const auto& entries = written.reader->entries();
    return static_cast<unsigned>(std::count_if(
        entries.begin(), entries.end(), [](const StoredEntry& entry) { return !entry.isBlack; }));
}

TEST(CompoundSiblings, CompleteTreeIsBlackThroughout) {
    EXPECT_EQ(redOnes(Written(fileWith(1))), 0U);
    EXPECT_EQ(redOnes(Written(fileWith(7))), 0U);
    EXPECT_EQ(redOnes(Written(fileWith(127))), 0U);
}

TEST(CompoundSiblings, WhatStandsOnAnIncompleteLevelIsRed) {
    EXPECT_EQ(redOnes(Written(fileWith(2))), 1U);
    EXPECT_EQ(redOnes(Written(fileWith(6))), 3U);
    EXPECT_EQ(redOnes(Written(fileWith(8))), 1U);
    EXPECT_EQ(redOnes(Written(fileWith(126))), 63U);
}

TEST(CompoundSiblings, OrderOfAddingDoesNotMatterToTheTree) {
    std::vector<unsigned> numbers(500);
    for (unsigned index = 0; index < numbers.size(); ++index) {
        numbers[index] = index;
    }
    std::mt19937 generator(1);
    std::shuffle(numbers.begin(), numbers.end(), generator);
    CompoundFile shuffled = newFile();
    for (const unsigned number : numbers) {
        shuffled.addStorage(Storage::root, nameOf(number));
    }
    EXPECT_EQ(Written(shuffled).namesIn(0), Written(fileWith(500)).namesIn(0));
}

TEST(CompoundSiblings, TwentyThousandAreFoundByName) {
    const Written written(fileWith(20'000));
    EXPECT_EQ(written.reader->entries()[0].members.size(), 20'000U);
    EXPECT_EQ(written.reader->depthOf(0), 15U);
    EXPECT_EQ(written.reader->find(0, nameOf(19'999)), 20'000U);
}

/// Seconds that a file with so many siblings takes, the quickest of three times.
double secondsFor(unsigned siblings) {
    double quickest = 1e9;
    for (int attempt = 0; attempt < 3; ++attempt) {
        const auto before = std::chrono::steady_clock::now();
        const CompoundFile file = fileWith(siblings);
        file.write([](ByteView) {});
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - before;
        quickest = std::min(quickest, taken.count());
    }
    return quickest;
}

TEST(CompoundSiblings, TimeGrowsWithTheirNumberNotWithItsSquare) {
    // Sixteen times as many would take 256 times as long.
    EXPECT_LT(secondsFor(40'000), 64 * secondsFor(2500));
}

}  // namespace
}  // namespace trellant::compound
