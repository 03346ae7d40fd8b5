// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/free_numbers.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <string>

namespace trellant {
namespace {

class FreeNumber : public ::testing::Test {
  protected:
    /// A name with this stem, and its number from 2 on.
    [[nodiscard]] static FreeNumbers::Name named(const std::string& stem) {
        return [stem](std::uint64_t number) {
            return number == 1 ? stem : stem + "_" + std::to_string(number);
        };
    }
    [[nodiscard]] std::optional<std::uint64_t> find(const std::string& stem,
                                                    std::uint64_t first = 1,
                                                    std::uint64_t last = 999) {
        return numbers_.find(first, last, named(stem), [this](const std::string& name) {
            ++asked_;
            return taken_.contains(name);
        });
    }

    FreeNumbers numbers_;
    std::set<std::string> taken_;
    int asked_ = 0;
};

TEST_F(FreeNumber, IsTheFirstWhoseNameIsNotTaken) {
    EXPECT_EQ(find("Kick"), 1U);
    taken_ = {"Kick", "Kick_2", "Kick_4"};
    EXPECT_EQ(find("Kick"), 3U);
    EXPECT_EQ(find("Kick", 4), 5U);
    EXPECT_EQ(find("Kick", 2), 3U);
}

TEST_F(FreeNumber, IsFoundBehindNumbersOfFewerDigits) {
    taken_ = {"Kick"};
    for (int number = 2; number <= 100; ++number) {
        taken_.insert("Kick_" + std::to_string(number));
    }
    EXPECT_EQ(find("Kick"), 101U);
}

TEST_F(FreeNumber, IsNoneWhereAllAreTaken) {
    taken_ = {"Kick", "Kick_2", "Kick_3"};
    EXPECT_EQ(find("Kick", 1, 3), std::nullopt);
    EXPECT_EQ(find("Kick", 2, 1), std::nullopt);
}

TEST_F(FreeNumber, OfANameThatIsAnothersWithANumberIsItsOwn) {
    taken_ = {"Kick_9"};
    EXPECT_EQ(find("Kick_9"), 2U);
    EXPECT_EQ(find("Kick"), 1U);
    EXPECT_EQ(find("Kick", 9), 10U);
}

TEST_F(FreeNumber, AsksForNoTakenNameTwice) {
    for (int number = 0; number < 999; ++number) {
        const auto free = find("Kick");
        ASSERT_TRUE(free.has_value());
        taken_.insert(named("Kick")(*free));
    }
    EXPECT_EQ(find("Kick"), std::nullopt);
    // Each number once when it is free and once when it is taken.
    EXPECT_EQ(asked_, 2 * 999);
    EXPECT_EQ(find("Kick"), std::nullopt);
    EXPECT_EQ(asked_, 2 * 999);
}

TEST_F(FreeNumber, AsksForNoTakenNameTwiceWhereverItIsWantedFrom) {
    for (int round = 0; round < 300; ++round) {
        for (const std::uint64_t first : {1U, 500U, 250U}) {
            const auto free = find("Kick", first);
            ASSERT_TRUE(free.has_value());
            taken_.insert(named("Kick")(*free));
        }
    }
    // 900 numbers: 1 to 900, each once when it was free and at most once when it was taken.
    EXPECT_FALSE(taken_.contains("Kick_901"));
    EXPECT_EQ(taken_.size(), 900U);
    EXPECT_LE(asked_, 2 * 900);
}

TEST_F(FreeNumber, ThatIsTheLargestOfAllIsNone) {
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    taken_ = {named("Kick")(largest - 1)};
    EXPECT_EQ(find("Kick", largest - 1, largest - 1), std::nullopt);
    EXPECT_EQ(find("Kick", largest - 1, largest), largest);
}

TEST_F(FreeNumber, SeriesAreApartByTheirDigitsAndNames) {
    const auto kick = named("Kick");
    EXPECT_EQ(FreeNumbers::series(2, kick), FreeNumbers::series(9, kick));
    EXPECT_NE(FreeNumbers::series(1, kick), FreeNumbers::series(2, kick));
    EXPECT_NE(FreeNumbers::series(9, kick), FreeNumbers::series(10, kick));
    EXPECT_NE(FreeNumbers::series(2, kick), FreeNumbers::series(2, named("Snare")));
    EXPECT_NE(FreeNumbers::series(9, kick), FreeNumbers::series(1, named("Kick_9")));
}

TEST_F(FreeNumber, OfNamesThatDifferOnlyWithoutOneIsLookedForOnce) {
    // As names are that are cut to make room for their number.
    for (int number = 2; number <= 999; ++number) {
        taken_.insert("Long_" + std::to_string(number));
    }
    for (int source = 0; source < 100; ++source) {
        const std::string whole = "Long" + std::to_string(source);
        taken_.insert(whole);
        const auto cut = [&](std::uint64_t number) {
            return number == 1 ? whole : "Long_" + std::to_string(number);
        };
        EXPECT_EQ(numbers_.find(1, 999, cut,
                                [this](const std::string& name) {
                                    ++asked_;
                                    return taken_.contains(name);
                                }),
                  std::nullopt);
    }
    EXPECT_EQ(asked_, 998 + 100);
}

}  // namespace
}  // namespace trellant
