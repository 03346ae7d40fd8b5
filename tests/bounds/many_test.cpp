// SPDX-License-Identifier: Apache-2.0
// Much of one thing: memory grows with it by so many bytes for each, and no faster.
//
// A clip takes 1,600 bytes, its part of the sources included: its values in the table, its event,
// the texts of both.
#include "bounds_fixture.h"
#include "generated_file.h"

#include <filesystem>

namespace trellant::testing {
namespace {

class MuchOfOneThing : public BoundsTest {
  protected:
    void expectAnswered(std::string_view shape, std::uint64_t events, std::uint64_t bound) const {
        // Lists double their room: addresses that are not used yet.
        const auto run = inspect(2 * bound + addressBase);
        EXPECT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(run.events, events);
        expectPeak(run, shape, bound);
        expectOutOfMemory(inspect(bound / 3));
    }
};

TEST_F(MuchOfOneThing, AMillionComponentsOfOneSequence) {
    const std::uint64_t count = generateFile(file(), "sequence", 1'000'000);
    expectAnswered("Components", count, count * 1'600 + base);
}

TEST_F(MuchOfOneThing, AMillionMobs) {
    // A mob and its descriptor: 8 values of 32 bytes, 24 for each of the two by number, 64 for one
    // by identifier, 48 by descriptor, and 8 in the list of all.
    const std::uint64_t count = generateFile(file(), "mobs", 1'000'000);
    expectAnswered("Mobs", 10, count * (8 * 32 + 2 * 24 + 64 + 48 + 8) + base);
}

TEST_F(MuchOfOneThing, FiftyThousandInputsOfOneEffect) {
    // A clip, and the slot of the effect that holds it.
    const std::uint64_t count = generateFile(file(), "inputs", 50'000);
    expectAnswered("Inputs", count, count * 2'000 + base);
}

TEST_F(MuchOfOneThing, AHundredThousandClipsBelowFortyEightLevels) {
    // A clip, and the selector that holds it.
    const std::uint64_t count = generateFile(file(), "levels", 100'000, {"--levels", "48"});
    expectAnswered("Levels", count, count * 2'000 + base);
}

TEST_F(MuchOfOneThing, TwoThousandSourcesOfOneNameEndAtNumber999) {
    const std::uint64_t count = generateFile(file(), "names", 2'000);
    // A source has as many values as two clips, and a file name that is remembered.
    const std::uint64_t bound = count * 4'000 + base;
    const auto run = extract(2 * bound + addressBase);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.events, count);
    std::uint64_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(work())) {
        files += entry.is_regular_file() ? 1U : 0U;
    }
    // Those beyond take the first name again, over and over.
    EXPECT_EQ(files, sanitized ? count : 999);
    EXPECT_TRUE(std::filesystem::exists(work() + "/Take.wav"));
    EXPECT_EQ(std::filesystem::exists(work() + "/Take_999.wav"), !sanitized);
    EXPECT_FALSE(std::filesystem::exists(work() + "/Take_1000.wav"));
    expectPeak(run, "Names", bound);
}

}  // namespace
}  // namespace trellant::testing
