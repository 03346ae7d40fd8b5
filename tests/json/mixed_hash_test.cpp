// SPDX-License-Identifier: Apache-2.0
#include <trellant/json/record_hash.h>

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <set>

namespace trellant {
namespace {

TEST(MixedHash, SmallPairsAllDiffer) {
    std::set<std::size_t> seen;
    for (std::size_t seed = 0; seed < 256; ++seed) {
        for (std::size_t next = 0; next < 256; ++next) {
            seen.insert(mixedHash(seed, next));
        }
    }
    EXPECT_EQ(seen.size(), 65'536U);
}

TEST(MixedHash, EqualPartsDoNotCancelOut) {
    for (std::size_t part = 0; part < 1'000; ++part) {
        EXPECT_NE(mixedHash(part, part), 0U) << part;
        EXPECT_NE(mixedHash(part, part), mixedHash(part + 1, part + 1)) << part;
    }
}

TEST(MixedHash, TheOrderCounts) {
    for (std::size_t low = 0; low < 32; ++low) {
        for (std::size_t high = low + 1; high < 32; ++high) {
            EXPECT_NE(mixedHash(low, high), mixedHash(high, low)) << low << ", " << high;
            EXPECT_NE(mixedHash(mixedHash(7, low), high), mixedHash(mixedHash(7, high), low))
                << low << ", " << high;
        }
    }
}

/// How many bits of the hash change, on average over 64 inputs, when one bit of one part does.
double meanBitsChanged(std::size_t seedBit, std::size_t nextBit) {
    int changed = 0;
    for (std::size_t input = 0; input < 64; ++input) {
        changed += std::popcount(mixedHash(input, 3 * input) ^
                                 mixedHash(input ^ seedBit, (3 * input) ^ nextBit));
    }
    return changed / 64.0;
}

// A hash of 64 bits that spreads well changes 32 of them, give or take four in a single draw and
// half a bit in the mean of 64.
TEST(MixedHash, OneBitOfEitherPartChangesAboutHalfOfTheBits) {
    static_assert(sizeof(std::size_t) == sizeof(std::uint64_t));
    for (unsigned bit = 0; bit < 64; ++bit) {
        EXPECT_NEAR(meanBitsChanged(std::size_t{1} << bit, 0), 32, 3) << "seed, bit " << bit;
        EXPECT_NEAR(meanBitsChanged(0, std::size_t{1} << bit), 32, 3) << "next, bit " << bit;
    }
}

}  // namespace
}  // namespace trellant
