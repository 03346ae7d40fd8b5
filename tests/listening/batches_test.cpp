// SPDX-License-Identifier: Apache-2.0
// Small files share a process of the converter, and none pays for another.
#include "batches.h"

#include "sources_fixture.h"

#include <trellant/extraction/wave_conversion.h>
#include <trellant/listening/source_sound.h>

#include <gmock/gmock.h>

#include <limits>

namespace trellant::testing {
namespace {

using listening::Batch;
using listening::batchesOf;
using listening::SoundState;
using ::testing::ElementsAre;

constexpr std::uint64_t mebi = 1'048'576;

std::vector<std::size_t> counts(const std::vector<std::uint64_t>& sizes) {
    std::vector<std::size_t> result;
    std::size_t first = 0;
    for (const Batch& batch : batchesOf(sizes)) {
        EXPECT_EQ(batch.first, first);
        first += batch.count;
        result.push_back(batch.count);
    }
    EXPECT_EQ(first, sizes.size());
    return result;
}

TEST(Batches, HoldFourMebibytesAndThirtyTwoFiles) {
    EXPECT_THAT(counts({}), ElementsAre());
    EXPECT_THAT(counts({0}), ElementsAre(1));
    EXPECT_THAT(counts(std::vector<std::uint64_t>(65, 100)), ElementsAre(32, 32, 1));
    EXPECT_THAT(counts({3 * mebi, mebi, 1}), ElementsAre(2, 1));
    EXPECT_THAT(counts({1, 4 * mebi, 1, 1}), ElementsAre(1, 1, 2));
    constexpr auto most = std::numeric_limits<std::uint64_t>::max();
    EXPECT_THAT(counts({most, most, 1}), ElementsAre(1, 1, 1));
}

class ManySources : public SourcesTest {
  protected:
    std::vector<listening::SourceSound> measured(const std::string& converter = TRELLANT_WAV) {
        WorkProgress progress;
        return listening::measureSources(timeline_, {.converter = converter}, staging_, progress);
    }
    std::size_t runs() { return readFile(folder_.file("runs")).size() / 2; }
    /// A converter that leaves a mark for each run and then does as the text says.
    std::string marking(const std::string& text) {
        return script("echo x >> '" + folder_.file("runs") + "'; " + text +
                      "; exec '" TRELLANT_WAV "' \"$@\"");
    }
};

TEST_F(ManySources, AreHeardByOneProcessForThirtyTwo) {
    for (int i = 0; i < 40; ++i) {
        add(file(std::to_string(i) + ".wav",
                 waveOf(std::vector<std::int16_t>(static_cast<std::size_t>(i) + 1))));
    }
    const auto sounds = measured(marking("true"));
    EXPECT_EQ(runs(), 2U);
    for (std::size_t i = 0; i < sounds.size(); ++i) {
        ASSERT_NE(sounds[i].measures, nullptr) << i;
        EXPECT_EQ(sounds[i].measures->frames, i + 1);
    }
    EXPECT_TRUE(isStagingEmpty());
}

TEST_F(ManySources, OneThatIsNoAudioGetsItsReasonAndCostsNoFurtherProcess) {
    add(file("a.wav", waveOf({1})));
    add(file("b.wav", bytesOf("no audio")));
    add(file("c.wav", waveOf({1, 2})));
    const auto sounds = measured(marking("true"));
    EXPECT_EQ(runs(), 1U);
    EXPECT_EQ(sounds[0].measures->frames, 1U);
    EXPECT_EQ(sounds[1].state, SoundState::refused);
    EXPECT_EQ(sounds[1].reason, "it is no AIFF, AIFC or WAVE file");
    EXPECT_EQ(sounds[2].measures->frames, 2U);
}

// The shared process dies; of the three that follow, the one for b dies too.
TEST_F(ManySources, AProcessThatDiesLeavesEachToOneOfItsOwn) {
    add(file("a.wav", waveOf({1})));
    add(file("b.wav", waveOf({1})));
    add(file("c.wav", waveOf({1, 2})));
    const auto sounds =
        measured(marking("case \"$*\" in *b.wav*) echo half > \"$3\"; kill -9 $$;; esac"));
    EXPECT_EQ(runs(), 4U);
    EXPECT_EQ(sounds[0].measures->frames, 1U);
    EXPECT_EQ(sounds[1].state, SoundState::refused);
    EXPECT_EQ(sounds[1].reason, "the conversion was ended by signal 9");
    EXPECT_EQ(sounds[2].measures->frames, 2U);
    EXPECT_TRUE(isStagingEmpty());
}

// Lines that are no answer: a number beyond the tasks, none, one that is cut off by the end.
TEST_F(ManySources, WhatAProcessDoesNotTellIsAskedAgain) {
    add(file("a.wav", waveOf({1})));
    add(file("b.wav", waveOf({1, 2})));
    const auto sounds =
        measured(marking("case \"$*\" in *--then*) printf '3: no\\n0: no\\nwhat\\n2 no\\n1: cut' "
                         ">&2; exit 0;; esac"));
    EXPECT_EQ(runs(), 3U);
    EXPECT_EQ(sounds[0].measures->frames, 1U);
    EXPECT_EQ(sounds[1].measures->frames, 2U);
}

}  // namespace
}  // namespace trellant::testing
