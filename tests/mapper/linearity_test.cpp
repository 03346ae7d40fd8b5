// SPDX-License-Identifier: Apache-2.0
// Ten times the composition costs about ten times the reads of the file, never a hundred times.
#include "song.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

constexpr std::uint32_t small = 2'000;
constexpr std::uint32_t large = 20'000;

void expectLinear(std::uint64_t readsOfSmall, std::uint64_t readsOfLarge) {
    EXPECT_GT(readsOfSmall, 0U);
    EXPECT_LE(readsOfLarge, 11 * readsOfSmall);
}

std::vector<ObjectID> oneSlot(OmfBuilder& omf, const std::vector<ObjectID>& clips) {
    return {omf.slot({.editRate = Ratio{100}, .segment = omf.sequence(clips)})};
}

/// The reads of a composition whose every event is there.
std::uint64_t readsOf(OmfBuilder& omf, const std::vector<ObjectID>& slots,
                      std::uint32_t expectedEvents, const MappingPlaces& places = {}) {
    omf.composition({.slots = slots});
    const Mapped mapped = mapImage(omf.build(), places);
    EXPECT_EQ(mapped.timeline.events.size(), expectedEvents);
    return mapped.readCalls;
}

std::uint64_t readsOfClips(std::uint32_t count) {
    OmfBuilder omf;
    const MobID source{1, 2, 3};
    omf.audioFile({.id = source, .media = shortWave(), .length = 48});
    std::vector<ObjectID> clips;
    for (std::uint32_t index = 0; index < count; ++index) {
        clips.push_back(omf.clip({.length = 10, .source = source, .start = index}));
    }
    return readsOf(omf, oneSlot(omf, clips), count);
}

std::uint64_t readsOfSources(std::uint32_t count) {
    OmfBuilder omf;
    std::vector<ObjectID> clips;
    for (std::uint32_t index = 0; index < count; ++index) {
        const MobID source{index, 2, 3};
        omf.audioFile({.id = source, .media = shortWave(), .length = 48});
        clips.push_back(omf.clip({.length = 10, .source = source}));
    }
    return readsOf(omf, oneSlot(omf, clips), count);
}

std::uint64_t readsOfTracks(std::uint32_t count) {
    OmfBuilder omf;
    const MobID source{1, 2, 3};
    std::vector<ObjectID> clips;
    std::vector<ObjectID> tracks;
    for (std::uint32_t index = 0; index < count; ++index) {
        tracks.push_back(omf.slot({.editRate = Ratio{48'000}, .track = omf.track({.id = index})}));
        clips.push_back(omf.clip({.length = 10, .source = source, .track = index}));
    }
    omf.sourceMob({.id = source, .slots = tracks, .descriptor = omf.descriptor({})});
    return readsOf(omf, oneSlot(omf, clips), count);
}

std::uint64_t readsOfSlots(std::uint32_t count) {
    OmfBuilder omf;
    const MobID source{1, 2, 3};
    omf.audioFile({.id = source, .media = shortWave(), .length = 48});
    std::vector<ObjectID> slots;
    for (std::uint32_t index = 0; index < count; ++index) {
        slots.push_back(omf.slot(
            {.editRate = Ratio{100}, .segment = omf.clip({.length = 10, .source = source})}));
    }
    return readsOf(omf, slots, count);
}

/// Cuts: each looks whether its path was recorded before.
std::uint64_t readsOfCuts(std::uint32_t count) {
    OmfBuilder omf;
    const MobID source{1, 2, 3};
    omf.audioFile({.id = source, .media = shortWave(), .length = 48});
    std::vector<ObjectID> components;
    for (std::uint32_t index = 0; index < count; ++index) {
        components.push_back(omf.clip({.length = 10, .source = source}));
        components.push_back(omf.transition({.length = 2, .cutPoint = 1}));
    }
    return readsOf(omf, oneSlot(omf, components), count);
}

/// Inputs of one effect: each draft looks for its like among those gathered.
std::uint64_t readsOfInputs(std::uint32_t count) {
    OmfBuilder omf;
    const MobID source{1, 2, 3};
    omf.audioFile({.id = source, .media = shortWave(), .length = 48});
    std::vector<EffectSlotSpec> inputs;
    for (std::uint32_t index = 0; index < count; ++index) {
        inputs.push_back({-1, omf.clip({.length = 10, .source = source})});
    }
    const ObjectID effect = omf.effect({.effectID = "omfi:effect:MonoAudioGain", .slots = inputs});
    return readsOf(omf, {omf.slot({.editRate = Ratio{100}, .segment = effect})}, count);
}

/// Extracted files of one name.
std::uint64_t readsOfEqualNames(std::uint32_t count) {
    const TemporaryDirectory work;
    OmfBuilder omf;
    std::vector<ObjectID> clips;
    for (std::uint32_t index = 0; index < count; ++index) {
        const MobID source{index, 2, 3};
        omf.audioFile({.id = source, .name = "Take", .media = shortWave(), .length = 48});
        clips.push_back(omf.clip({.length = 10, .source = source}));
    }
    return readsOf(omf, oneSlot(omf, clips), count,
                   {.workDirectory = work.path().string(), .extract = true});
}

TEST(Linearity, OfClips) {
    expectLinear(readsOfClips(small), readsOfClips(large));
}

TEST(Linearity, OfSources) {
    expectLinear(readsOfSources(small), readsOfSources(large));
}

TEST(Linearity, OfTracksOfOneSource) {
    expectLinear(readsOfTracks(small), readsOfTracks(large));
}

TEST(Linearity, OfSlots) {
    expectLinear(readsOfSlots(small), readsOfSlots(large));
}

TEST(Linearity, OfCuts) {
    expectLinear(readsOfCuts(small), readsOfCuts(large));
}

TEST(Linearity, OfInputsOfOneEffect) {
    expectLinear(readsOfInputs(small), readsOfInputs(large));
}

TEST(Linearity, OfFilesOfOneName) {
    expectLinear(readsOfEqualNames(90), readsOfEqualNames(900));
}

TEST(Linearity, OneClipOfManyInAnotherOrderCostsTheSame) {
    // The clips of a sequence listed backwards: every value is still read about once.
    OmfBuilder omf;
    const MobID source{1, 2, 3};
    omf.audioFile({.id = source, .media = shortWave(), .length = 48});
    std::vector<ObjectID> clips;
    for (std::uint32_t index = 0; index < large; ++index) {
        clips.push_back(omf.clip({.length = 10, .source = source}));
    }
    std::reverse(clips.begin(), clips.end());
    EXPECT_LE(readsOf(omf, oneSlot(omf, clips), large), 2 * readsOfClips(large));
}

}  // namespace
}  // namespace trellant::testing
