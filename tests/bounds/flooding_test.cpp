// SPDX-License-Identifier: Apache-2.0
// Numbers chosen so that a table which spreads them by their remainder puts thousands of them into
// one place: each of them would then be compared with all the others there, for minutes.
#include "bounds_fixture.h"
#include "growing_file.h"
#include "worker_fixture.h"

#include <limits>
#include <unordered_set>
#include <vector>

namespace trellant::testing {
namespace {

constexpr std::uint64_t memory = 512 * mebibyte;
/// Beyond the numbers that the documents use themselves.
constexpr std::uint32_t first = 2'000'000;

/// How many places the library's tables have for that many keys that came one by one.
std::uint32_t placesFor(std::uint32_t count) {
    std::unordered_set<std::uint32_t> table;
    for (std::uint32_t key = 0; key < count; ++key) {
        table.insert(key);
    }
    return static_cast<std::uint32_t>(table.bucket_count());
}

/// Numbers in as few places of a table as 32 bits allow, neighbours in different places: a computer
/// walks through memory in order as if it were a list of nothing.
std::vector<std::uint32_t> flood(std::uint32_t count) {
    constexpr std::uint32_t largest = std::numeric_limits<std::uint32_t>::max();
    const std::uint32_t places = placesFor(count);
    const std::uint32_t inOnePlace = (largest - first) / places;
    const std::uint32_t used = count / inOnePlace + 1;
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t i = 0; i < count; ++i) {
        numbers.push_back(first + i / used * places + i % used);
    }
    return numbers;
}

class Flooding : public BoundsTest {
  protected:
    static constexpr std::uint32_t names_ = sanitized ? 20'000 : 700'000;
    static constexpr std::uint32_t sources_ = 7;
    static constexpr std::uint32_t tracksOfOneSource_ = sanitized ? 1'000 : 24'000;
};

TEST_F(Flooding, OfNamesLeavesTheAnswerAsItWas) {
    GrowingFile table(file(), oneClipDocument().image());
    for (const std::uint32_t object : flood(names_)) {
        table.object(object, propertyNameProperty);
        table.immediate("name");
    }
    table.finish();
    EXPECT_EQ(inspect(memory).output, smallAnswer());
}

TEST_F(Flooding, OfTracksLeavesAllClips) {
    OmfBuilder omf;
    std::vector<ObjectID> clips;
    const std::uint32_t places = placesFor(sources_ * tracksOfOneSource_);
    for (std::uint32_t index = 0; index < sources_; ++index) {
        const MobID source{index, 2, 3};
        auto mob = omf.sourceMob({.id = source, .descriptor = omf.descriptor({})});
        // A track counts as its source's number, then its own: all give one remainder.
        const std::uint64_t ofSource = (std::uint64_t{mob.id()} << 32U) % places;
        std::vector<ObjectID> slots;
        for (std::uint32_t i = 1; i <= tracksOfOneSource_; ++i) {
            const auto track = static_cast<std::uint32_t>(std::uint64_t{i} * places - ofSource);
            slots.push_back(
                omf.slot({.editRate = Ratio{48'000}, .track = omf.track({.id = track})}));
            if (i == 1) {
                clips.push_back(omf.clip({.length = 10, .source = source, .track = track}));
            }
        }
        mob.refs("OMFI:MOBJ:Slots", slots);
    }
    omf.composition(
        {.slots = {omf.slot({.editRate = Ratio{100}, .segment = omf.sequence(clips)})}});
    writeFile(file(), omf.build());
    const auto run = inspect(memory);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.events, sources_);
}

}  // namespace
}  // namespace trellant::testing
