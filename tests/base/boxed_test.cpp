#include <trellant/base/boxed.h>

#include <gtest/gtest.h>

#include <string>
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
    second->push_back(3);
    EXPECT_EQ(*std::as_const(first), (std::vector<int>{1, 2}));
    EXPECT_EQ(*std::as_const(second), (std::vector<int>{1, 2, 3}));
    (*first)[0] = 9;
    EXPECT_EQ(*std::as_const(second), (std::vector<int>{1, 2, 3}));
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
    EXPECT_EQ(*std::as_const(first), std::vector<int>());
}

TEST(Boxed, AssigningItselfKeepsTheValue) {
    Numbers numbers(std::vector<int>{1});
    const Numbers& same = numbers;
    numbers = same;
    EXPECT_EQ(*std::as_const(numbers), std::vector<int>{1});
}

TEST(Boxed, MovingLeavesNothingBehind) {
    Numbers first(std::vector<int>{1});
    const Numbers second = std::move(first);
    EXPECT_EQ(*second, std::vector<int>{1});
    EXPECT_FALSE(first.has_value());  // NOLINT(bugprone-use-after-move)
}

}  // namespace
}  // namespace trellant
