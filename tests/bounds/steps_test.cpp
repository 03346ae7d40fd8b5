// SPDX-License-Identifier: Apache-2.0
// Small files whose segments are few enough and each take long: what a visit does is counted too.
//
// Bound: 167,772,160 steps and 16 for each byte of the file, some 25 ns each, so that none of these
// takes more than ten seconds. Until the rest is counted, after 262,144 visits, drafts of 104 bytes
// are kept in a list that doubles its room.
#include "bounds_fixture.h"
#include "worker_fixture.h"

#include <filesystem>
#include <vector>

namespace trellant::testing {
namespace {

class Steps : public BoundsTest {
  protected:
    Steps() {
        omf_.audioFile({.id = tone_, .name = "Tone.wav", .media = toneWave(), .length = 480});
    }
    ObjectID clip() { return omf_.clip({.length = 480, .source = tone_}); }
    ObjectID fan(ObjectID innermost, int levels) {
        for (int level = 0; level < levels; ++level) {
            innermost = omf_.sequence(std::vector<ObjectID>(10, innermost));
        }
        return innermost;
    }
    /// The file has a clip and `segment`, and takes too long.
    void expectTooMany(ObjectID segment) {
        const ObjectID slot =
            omf_.slot({.editRate = Ratio{48'000}, .segment = omf_.sequence({clip(), segment})});
        omf_.composition({.name = "Piece", .slots = {slot}});
        const Bytes image = omf_.build();
        EXPECT_LT(image.size(), 512 * kibibyte);
        writeFile(file(), image);
        const auto run = inspect(512 * mebibyte);
        expectFailed(run, openingLines() + openSlotLines(),
                     "Unsupported OMF/Bento feature: composition takes more than " +
                         std::to_string(167'772'160 + 16 * image.size()) + " steps to map");
    }

    OmfBuilder omf_;
    static constexpr MobID tone_{1, 2, 3};
};

TEST_F(Steps, OfAnEffectWithManySlotsThatAreNothingToIt) {
    const std::vector<EffectSlotSpec> slots(64, {.argument = 7});
    const ObjectID effect =
        omf_.effect({.effectID = "omfi:effect:MonoAudioGain", .length = 10, .slots = slots});
    expectTooMany(fan(effect, 6));
}

TEST_F(Steps, OfClipsWithinManyEffects) {
    ObjectID segment = fan(clip(), 6);
    const ObjectID half = omf_.constantValue({1, 2});
    for (int level = 0; level < 15; ++level) {
        segment = omf_.gain(segment, half);
    }
    expectTooMany(segment);
}

TEST_F(Steps, OfClipsThroughManySources) {
    MobID source = tone_;
    for (std::uint32_t index = 0; index < 30; ++index) {
        const MobID next{9, 9, index};
        omf_.sourceMob({.id = next,
                        .slots = {omf_.slot({.editRate = Ratio{48'000},
                                             .segment = omf_.clip({.length = 10, .source = source}),
                                             .track = omf_.track({})})}});
        source = next;
    }
    expectTooMany(fan(omf_.clip({.length = 10, .source = source}), 6));
}

TEST_F(Steps, OfOneCutAgainAndAgainFarBelow) {
    const ObjectID filler = omf_.filler(10);
    const ObjectID cut = omf_.transition({.length = 2, .cutPoint = 1});
    std::vector<ObjectID> components;
    for (int i = 0; i < 30'000; ++i) {
        components.insert(components.end(), {filler, cut});
    }
    ObjectID segment = omf_.sequence(components);
    for (int level = 0; level < 20; ++level) {
        segment = omf_.sequence({segment});
    }
    expectTooMany(omf_.sequence(std::vector<ObjectID>(160, segment)));
}

}  // namespace
}  // namespace trellant::testing
