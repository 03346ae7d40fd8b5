// SPDX-License-Identifier: Apache-2.0
// What fuzzing begins with: were it not valid, most targets would not get beyond its first bytes.
#include "seeds.h"

#include "memory_file.h"
#include "targets.h"

#include <trellant/mapper/mapper.h>
#include <trellant/omf1/open.h>

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

namespace trellant::fuzzing {
namespace {

std::size_t eventsOf(ByteView container) {
    const MemoryFile file(container);
    const OMFDocument document = openAnyOMF(file.path());
    Mapper mapper(document, {.sourcePath = "/projects/song.omf"});
    return mapper.makeTimeline([](double) {}).events.size();
}

TEST(FuzzSeeds, KeepTheLaws) {
    for (const Target& target : targets) {
        for (const Seed& seed : seedsOf(target.name)) {
            SCOPED_TRACE(std::string(target.name).append("/").append(seed.name));
            target.run(seed.bytes);
        }
    }
}

TEST(FuzzSeeds, AreSmallAndOfDifferentNames) {
    constexpr std::size_t longest = 8'192;
    for (const Target& target : targets) {
        std::set<std::string> names;
        for (const Seed& seed : seedsOf(target.name)) {
            EXPECT_TRUE(names.insert(seed.name).second) << seed.name;
            EXPECT_LE(seed.bytes.size(), longest) << seed.name;
        }
        EXPECT_FALSE(names.empty()) << target.name;
    }
}

TEST(FuzzSeeds, CompositionsBecomeTheirClipsInEveryForm) {
    // Of the chain one clip is lost. The scopes have one clip within and one selected, and both
    // once more where the second track refers to the first.
    const std::map<std::string, std::size_t> clips{{"clip", 1},    {"transitions", 4},
                                                   {"effects", 3}, {"nesting", 4},
                                                   {"chain", 1},   {"worst", 2}};
    for (const Seed& seed : compositionSeeds()) {
        const std::string name = seed.name.substr(0, seed.name.find('-'));
        EXPECT_EQ(eventsOf(seed.bytes), clips.at(name)) << seed.name;
    }
    EXPECT_EQ(compositionSeeds().size(), 4 * clips.size());
}

TEST(FuzzSeeds, OlderSessionsBecomeTheirClipsInEveryByteOrder) {
    // The third component and those behind it are no clips.
    for (const Seed& seed : olderSeeds()) {
        EXPECT_EQ(eventsOf(seed.bytes), 2U) << seed.name;
    }
    EXPECT_EQ(olderSeeds().size(), 3U);
}

}  // namespace
}  // namespace trellant::fuzzing
