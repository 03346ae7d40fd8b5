// SPDX-License-Identifier: Apache-2.0
#include <trellant/model/rational.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <random>
#include <string>

namespace trellant {
namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

// Denominators whose product lies just beyond 64 bits, under values near 1/3 and 1/2.
const AAFRational nearThird(1012333502, 3037000507);
const AAFRational nearHalf(1518500255, 3037000511);

TEST(AAFRational, IsReducedWithPositiveDenominator) {
    EXPECT_EQ(AAFRational(6, -4).description(), "-3/2");
    EXPECT_EQ(AAFRational(-6, -4).description(), "3/2");
    EXPECT_EQ(AAFRational(48000, 1001).description(), "48000/1001");
    EXPECT_EQ(AAFRational(90000, 3000).description(), "30/1");
}

TEST(AAFRational, ZeroIsZeroOverOne) {
    EXPECT_EQ(AAFRational(0, -5).description(), "0/1");
    EXPECT_EQ(AAFRational(0, smallest).description(), "0/1");
    EXPECT_EQ(AAFRational().description(), "0/1");
    EXPECT_EQ(AAFRational::zero(), AAFRational(0, 7));
}

TEST(AAFRational, DenominatorDefaultsToOne) {
    EXPECT_EQ(AAFRational(-12).description(), "-12/1");
    EXPECT_EQ(AAFRational::one().description(), "1/1");
}

TEST(AAFRational, SmallestOverSmallestIsOne) {
    EXPECT_EQ(AAFRational(smallest, smallest).description(), "1/1");
}

TEST(AAFRational, SmallestNumeratorWithNegativeDenominatorBecomesLargest) {
    EXPECT_EQ(AAFRational(smallest, -1).description(), "9223372036854775807/1");
    EXPECT_EQ(AAFRational(smallest, -2).description(), "9223372036854775807/2");
    // 2^63 - 1 is a multiple of 7.
    EXPECT_EQ(AAFRational(smallest, -7).description(), "1317624576693539401/1");
}

TEST(AAFRational, SmallestDenominatorBecomesLargestWithNumeratorNegated) {
    EXPECT_EQ(AAFRational(1, smallest).description(), "-1/9223372036854775807");
    EXPECT_EQ(AAFRational(-7, smallest).description(), "1/1317624576693539401");
}

TEST(AAFRational, SmallestNumeratorStaysWithPositiveDenominator) {
    EXPECT_EQ(AAFRational(smallest, 1).description(), "-9223372036854775808/1");
    EXPECT_EQ(AAFRational(smallest, 2).description(), "-4611686018427387904/1");
    EXPECT_EQ(AAFRational(smallest, largest).description(),
              "-9223372036854775808/9223372036854775807");
}

TEST(AAFRational, SumAndDifferenceAreExact) {
    EXPECT_EQ(AAFRational(1, 3) + AAFRational(1, 6), AAFRational(1, 2));
    EXPECT_EQ(AAFRational(1, 3) - AAFRational(1, 2), AAFRational(-1, 6));
}

TEST(AAFRational, SumBeyondRangeKeepsSixDecimals) {
    EXPECT_EQ((nearThird + nearHalf).description(), "833333/1000000");
    EXPECT_EQ((nearHalf - nearThird).description(), "166667/1000000");
}

TEST(AAFRational, SumOfCrossProductsBeyondRangeSaturates) {
    EXPECT_EQ((AAFRational(largest) + AAFRational(1)).description(), "9223372036854775807/1");
    EXPECT_EQ((AAFRational(smallest) - AAFRational(1)).description(), "-9223372036854775808/1");
}

TEST(AAFRational, CrossProductBeyondRangeApproximates) {
    // (2^63 - 1)/2 + 1/3 in doubles is 2^62.
    EXPECT_EQ((AAFRational(largest, 2) + AAFRational(1, 3)).description(), "4611686018427387904/1");
}

TEST(AAFRational, ProductIsReducedBeforeItIsFormed) {
    EXPECT_EQ(AAFRational(2, 3) * AAFRational(-9, 4), AAFRational(-3, 2));
    EXPECT_EQ(AAFRational(largest, 5) * AAFRational(5, largest), AAFRational(1));
    EXPECT_EQ(AAFRational(0) * AAFRational(largest, 2), AAFRational(0));
}

TEST(AAFRational, ProductBeyondRangeKeepsSixDecimals) {
    EXPECT_EQ((nearThird * nearHalf).description(), "166667/1000000");
    EXPECT_EQ((AAFRational(largest) * AAFRational(largest)).description(), "9223372036854775807/1");
    EXPECT_EQ((AAFRational(largest) * AAFRational(smallest)).description(),
              "-9223372036854775808/1");
}

TEST(AAFRational, QuotientMultipliesByTheInverse) {
    EXPECT_EQ(AAFRational(3, 4) / AAFRational(-3, 8), AAFRational(-2));
    EXPECT_EQ(AAFRational(100) / AAFRational(30000, 1001), AAFRational(1001, 300));
}

TEST(AAFRational, OrderIsByValue) {
    EXPECT_LT(AAFRational(1, 3), AAFRational(1, 2));
    EXPECT_LT(AAFRational(-1, 2), AAFRational(-1, 3));
    EXPECT_GT(AAFRational(largest), AAFRational(smallest));
    EXPECT_LE(AAFRational(2, 4), AAFRational(1, 2));
    EXPECT_GE(AAFRational(2, 4), AAFRational(1, 2));
    EXPECT_LT(AAFRational(3074457345618258602), AAFRational(largest, 3));
}

TEST(AAFRational, OrderBeyondCrossProductsIsByDoubles) {
    // Both are 2^62 as doubles.
    const AAFRational left(largest, 2);
    const AAFRational right(largest - 2, 2);
    EXPECT_FALSE(left < right);
    EXPECT_FALSE(right < left);
    EXPECT_TRUE(left <= right);
    EXPECT_NE(left, right);
    EXPECT_LT(AAFRational(1, largest), AAFRational(largest, 2));
}

TEST(AAFRational, ApproximationRoundsToSixDecimals) {
    EXPECT_EQ(AAFRational::approximation(0.5).description(), "1/2");
    EXPECT_EQ(AAFRational::approximation(1.0 / 3).description(), "333333/1000000");
    // 0.0078125 * 1000000 is 7812.5 exactly.
    EXPECT_EQ(AAFRational::approximation(0.0078125).description(), "7813/1000000");
    EXPECT_EQ(AAFRational::approximation(-0.0078125).description(), "-7813/1000000");
}

TEST(AAFRational, ApproximationOfNotANumberIsZero) {
    EXPECT_EQ(AAFRational::approximation(std::nan("")).description(), "0/1");
}

TEST(AAFRational, ApproximationSaturates) {
    EXPECT_EQ(AAFRational::approximation(1e300).description(), "9223372036854775807/1");
    EXPECT_EQ(AAFRational::approximation(-1e300).description(), "-9223372036854775808/1");
    EXPECT_EQ(AAFRational::approximation(0x1p63).description(), "9223372036854775807/1");
    EXPECT_EQ(AAFRational::approximation(-0x1p63).description(), "-9223372036854775808/1");
    EXPECT_EQ(AAFRational::approximation(std::numeric_limits<double>::infinity()).description(),
              "9223372036854775807/1");
}

TEST(AAFRational, ApproximationTakesTheFirstScaleThatFits) {
    // Scaled by 1000000 it is beyond 2^63; scaled by 100000 the nearest double is
    // 922337203685549952, of which 32 is the divisor shared with 100000.
    EXPECT_EQ(AAFRational::approximation(9223372036855.5).description(), "28823037615173436/3125");
    EXPECT_EQ(AAFRational::approximation(0x1p62).description(), "4611686018427387904/1");
}

TEST(AAFRational, ApproximationThatLandsOnTwoToThe63TakesTheNextScale) {
    // A million times 9223372036854 + 397/512 is 417 below 2^63, nearer to it than to the double
    // before, which is 1024 below. Scaled by 100000 the nearest double is 922337203685477504.
    const double value = 9223372036854.0 + 397.0 / 512;
    EXPECT_EQ(AAFRational::approximation(value).description(), "28823037615171172/3125");
    EXPECT_EQ(AAFRational::approximation(-value).description(), "-28823037615171172/3125");
}

TEST(AAFRational, RoundedInt64RoundsHalvesAwayFromZero) {
    EXPECT_EQ(AAFRational(1, 2).roundedInt64(), 1);
    EXPECT_EQ(AAFRational(-1, 2).roundedInt64(), -1);
    EXPECT_EQ(AAFRational(5, 2).roundedInt64(), 3);
    EXPECT_EQ(AAFRational(1, 3).roundedInt64(), 0);
    EXPECT_EQ(AAFRational(-5, 3).roundedInt64(), -2);
}

TEST(AAFRational, RoundedInt64Saturates) {
    EXPECT_EQ(AAFRational(largest).roundedInt64(), largest);
    EXPECT_EQ(AAFRational(smallest).roundedInt64(), smallest);
}

TEST(AAFRational, DoubleValueIsTheQuotient) {
    EXPECT_EQ(AAFRational(-3, 8).doubleValue(), -0.375);
    EXPECT_EQ(AAFRational(30000, 1001).doubleValue(), 30000.0 / 1001.0);
}

/// Values small enough that no sum or product of three leaves 64 bits.
class Generator {
  public:
    AAFRational next() { return AAFRational(number(-100000, 100000), number(1, 1000)); }

  private:
    std::int64_t number(std::int64_t low, std::int64_t high) {
        const auto width = static_cast<std::uint64_t>(high - low + 1);
        return low + static_cast<std::int64_t>(engine_() % width);
    }
    std::mt19937_64 engine_{20240917};
};

TEST(AAFRationalLaws, EveryResultIsReduced) {
    Generator generator;
    for (int round = 0; round < 20000; ++round) {
        const AAFRational left = generator.next();
        const AAFRational right = generator.next();
        for (const AAFRational& value : {left, left + right, left - right, left * right}) {
            ASSERT_GT(value.denominator(), 0);
            ASSERT_EQ(std::gcd(value.numerator(), value.denominator()), 1) << value.description();
        }
    }
}

TEST(AAFRationalLaws, SumsAndProductsCommuteAndAssociate) {
    Generator generator;
    for (int round = 0; round < 20000; ++round) {
        const AAFRational a = generator.next();
        const AAFRational b = generator.next();
        const AAFRational c = generator.next();
        ASSERT_EQ(a + b, b + a);
        ASSERT_EQ(a * b, b * a);
        ASSERT_EQ((a + b) + c, a + (b + c));
        ASSERT_EQ(a * (b + c), a * b + a * c);
    }
}

TEST(AAFRationalLaws, DifferenceUndoesSumAndQuotientUndoesProduct) {
    Generator generator;
    for (int round = 0; round < 20000; ++round) {
        const AAFRational a = generator.next();
        const AAFRational b = generator.next();
        ASSERT_EQ(a + b - b, a);
        if (b != AAFRational::zero()) {
            ASSERT_EQ(a * b / b, a);
        }
    }
}

TEST(AAFRationalLaws, OrderAgreesWithTheSignOfTheDifference) {
    Generator generator;
    for (int round = 0; round < 20000; ++round) {
        const AAFRational a = generator.next();
        const AAFRational b = generator.next();
        ASSERT_EQ(a < b, (a - b).numerator() < 0);
        ASSERT_EQ(a > b, (a - b).numerator() > 0);
    }
}

TEST(AAFRationalDeathTest, ZeroDenominatorStopsTheProcess) {
    EXPECT_DEATH(AAFRational(1, 0),
                 testing::Eq("precondition failed: AAFRational denominator must not be zero\n"));
}

TEST(AAFRationalDeathTest, DivisionByZeroStopsTheProcess) {
    EXPECT_DEATH((void)(AAFRational(1) / AAFRational(0)),
                 testing::Eq("precondition failed: AAFRational division by zero\n"));
}

}  // namespace
}  // namespace trellant
