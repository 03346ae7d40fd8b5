// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/boxed.h>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace trellant {
namespace {

using Numbers = Boxed<std::vector<int>>;

TEST(Boxed, StartsWithoutAValue) {
    const Numbers none;
    EXPECT_FALSE(none.has_value());
    EXPECT_EQ(none, Numbers());
    EXPECT_EQ(none, Numbers(std::nullopt));
}

TEST(Boxed, CopiesShareOneValue) {
    const Numbers first(std::vector<int>{1, 2});
    const Numbers second = first;
    EXPECT_EQ(&*first, &*second);
}

TEST(Boxed, ChangingACopyLeavesTheOthersAsTheyAre) {
    Numbers first(std::vector<int>{1, 2});
    Numbers second = first;
    second.mutableValue().push_back(3);
    EXPECT_EQ(*first, (std::vector<int>{1, 2}));
    EXPECT_EQ(*second, (std::vector<int>{1, 2, 3}));
    first.mutableValue()[0] = 9;
    EXPECT_EQ(*second, (std::vector<int>{1, 2, 3}));
}

TEST(Boxed, AValueOfOneOwnerIsChangedInItsPlace) {
    Numbers numbers(std::vector<int>{1});
    const std::vector<int>* const before = &*numbers;
    EXPECT_EQ(&numbers.mutableValue(), before);
    { const Numbers copy = numbers; }
    EXPECT_EQ(&numbers.mutableValue(), before);
}

TEST(Boxed, ReadingWhatIsNotConstLeavesTheValueShared) {
    Numbers first(std::vector<int>{1, 2});
    Numbers second = first;
    EXPECT_EQ(first->size(), 2U);
    EXPECT_EQ((*second)[1], 2);
    EXPECT_EQ(&*first, &*second);
    static_assert(std::is_same_v<decltype(*first), const std::vector<int>&>);
}

// The thread sanitizer is the judge here: neither thread has an object of its own.
TEST(Boxed, TwoThreadsMayReadOneObject) {
    struct Pair {
        Numbers first{std::vector<int>{1, 2}};
        Numbers second = first;
    } shared;
    const auto sum = [&shared](int& result) {
        for (int round = 0; round < 1'000; ++round) {
            const Numbers copy = shared.second;
            result += (*shared.first)[0] + static_cast<int>(shared.second->size()) + (*copy)[1];
        }
    };
    std::array<int, 2> sums{};
    std::thread one(sum, std::ref(sums[0]));
    std::thread other(sum, std::ref(sums[1]));
    one.join();
    other.join();
    EXPECT_EQ(sums, (std::array<int, 2>{5'000, 5'000}));
}

// Each thread changes its own copy while the other reads the value that both began with.
TEST(Boxed, ThreadsMayChangeCopiesOfTheirOwn) {
    const Numbers original(std::vector<int>{0});
    const auto count = [](Numbers copy, int& result) {
        for (int round = 0; round < 1'000; ++round) {
            ++copy.mutableValue()[0];
        }
        result = (*copy)[0];
    };
    std::array<int, 2> results{};
    std::thread one(count, original, std::ref(results[0]));
    std::thread other(count, original, std::ref(results[1]));
    one.join();
    other.join();
    EXPECT_EQ(results, (std::array<int, 2>{1'000, 1'000}));
    EXPECT_EQ((*original)[0], 0);
}

TEST(Boxed, EqualityComparesTheValues) {
    EXPECT_EQ(Numbers(std::vector<int>{1}), Numbers(std::vector<int>{1}));
    EXPECT_NE(Numbers(std::vector<int>{1}), Numbers(std::vector<int>{2}));
    EXPECT_NE(Numbers(std::vector<int>{}), Numbers());
}

TEST(Boxed, ResetAndEmplaceConcernThisCopyOnly) {
    Numbers first(std::vector<int>{1});
    Numbers second = first;
    second.reset();
    EXPECT_FALSE(second.has_value());
    EXPECT_EQ(first.emplace(), std::vector<int>());
    EXPECT_EQ(*first, std::vector<int>());
}

TEST(Boxed, AssigningItselfKeepsTheValue) {
    Numbers numbers(std::vector<int>{1});
    const Numbers& same = numbers;
    numbers = same;
    EXPECT_EQ(*numbers, std::vector<int>{1});
}

TEST(Boxed, MovingLeavesNothingBehind) {
    Numbers first(std::vector<int>{1});
    const Numbers second = std::move(first);
    EXPECT_EQ(*second, std::vector<int>{1});
    EXPECT_FALSE(first.has_value());  // NOLINT(bugprone-use-after-move)
}

}  // namespace
}  // namespace trellant
