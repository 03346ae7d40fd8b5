// SPDX-License-Identifier: Apache-2.0
// Chains of mobs: where they go on, where they end, what stops them.
#include "resolved.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

MobID mobNumber(std::uint32_t number) {
    return {.a = number, .b = 0, .c = 0};
}

class SourceChain : public ::testing::Test {
  protected:
    static constexpr MobID file_{0xF, 0, 0};

    void audioFile() { omf_.audioFile({.id = file_, .length = 480'000}); }
    ObjectBuilder clipOf(MobID source, std::int64_t start = 0) {
        return omf_.clip({.length = 100, .source = source, .start = start});
    }
    /// The slots of a mob with one track, number 1.
    std::vector<ObjectID> track(std::optional<ObjectID> segment, Ratio rate = {48'000},
                                std::optional<std::int64_t> origin = {}) {
        return {omf_.slot({.editRate = rate,
                           .segment = segment,
                           .track = omf_.track({.id = 1, .origin = origin})})};
    }
    static void expectRecord(const Resolution& resolution, const std::string& record) {
        EXPECT_FALSE(resolution.source);
        EXPECT_THAT(resolution.records, ElementsAre(record));
        EXPECT_EQ(resolution.lossReason, std::nullopt);
        EXPECT_THAT(resolution.diagnostics, IsEmpty());
    }
    /// A clip that leads through `count` master mobs to the audio file, and the last mob's clip.
    std::pair<ObjectID, ObjectID> chain(std::uint32_t count) {
        audioFile();
        ObjectID clip = clipOf(file_);
        const ObjectID last = clip;
        for (std::uint32_t number = 0; number < count; ++number) {
            const MobID id = mobNumber(100 + number);
            omf_.masterMob({.id = id, .slots = track(clip)});
            clip = clipOf(id);
        }
        return {clip, last};
    }

    OmfBuilder omf_;
};

TEST_F(SourceChain, OffsetsAddUpEachInItsOwnRate) {
    audioFile();
    // 24 at 24 a second; the mob's origin of 12 at 24 a second; 48000 at 48000 a second.
    omf_.masterMob({.id = mobNumber(1), .slots = track(clipOf(file_, 24), {24}, 12)});
    EXPECT_EQ(resolved(omf_, clipOf(mobNumber(1), 48'000)).source.value().start, AAFRational(5, 2));
}

TEST_F(SourceChain, SourceIsTheLastMobAndItsIdentifier) {
    const ObjectBuilder mob = omf_.audioFile({.id = file_, .length = 1});
    omf_.masterMob({.id = mobNumber(1), .slots = track(clipOf(file_))});
    const Resolution resolution = resolved(omf_, clipOf(mobNumber(1)));
    ASSERT_TRUE(resolution.source);
    EXPECT_EQ(resolution.source->mob, object(mob));
    EXPECT_EQ(resolution.source->mobID, (OMFUID{0xF, 0, 0}));
}

TEST_F(SourceChain, LoopStopsAtItsSecondPass) {
    const ObjectBuilder loop = clipOf(mobNumber(1));
    omf_.masterMob({.id = mobNumber(1), .slots = track(loop)});
    expectRecord(resolved(omf_, clipOf(mobNumber(1))),
                 "source reference cycle/depth limit at SCLP[" + std::to_string(loop.id()) + "]");
}

TEST_F(SourceChain, ClipThatLeadsToItselfStops) {
    const ObjectBuilder loop = clipOf(mobNumber(1));
    omf_.masterMob({.id = mobNumber(1), .slots = track(loop)});
    expectRecord(resolved(omf_, loop),
                 "source reference cycle/depth limit at SCLP[" + std::to_string(loop.id()) + "]");
}

TEST_F(SourceChain, LoopOverTwoMobsStops) {
    const ObjectBuilder first = clipOf(mobNumber(1));
    const ObjectBuilder second = clipOf(mobNumber(2));
    omf_.masterMob({.id = mobNumber(1), .slots = track(second)});
    omf_.masterMob({.id = mobNumber(2), .slots = track(first)});
    expectRecord(resolved(omf_, first),
                 "source reference cycle/depth limit at SCLP[" + std::to_string(first.id()) + "]");
}

TEST_F(SourceChain, ThirtyTwoClipsAreFollowed) {
    EXPECT_TRUE(resolved(omf_, chain(31).first).source);
}

TEST_F(SourceChain, ThirtyThirdClipIsNot) {
    const auto [first, last] = chain(32);
    expectRecord(resolved(omf_, first),
                 "source reference cycle/depth limit at SCLP[" + std::to_string(last) + "]");
}

TEST_F(SourceChain, LossInsideTheChainNamesItsOwnMob) {
    omf_.masterMob({.id = mobNumber(1), .slots = track(clipOf(file_))});
    const Resolution resolution = resolved(omf_, clipOf(mobNumber(1)));
    EXPECT_EQ(resolution.lossReason,
              "the referenced Source Mob 0000000F-00000000-00000000 is not contained in the file");
}

TEST_F(SourceChain, TapeLeadsOnToTheNextMob) {
    audioFile();
    omf_.sourceMob({.id = mobNumber(1),
                    .slots = track(clipOf(file_)),
                    .descriptor = omf_.descriptor({.classID = "MDTP"})});
    EXPECT_TRUE(resolved(omf_, clipOf(mobNumber(1))).source);
}

TEST_F(SourceChain, TapeThatEndsInAFillerIsReported) {
    omf_.sourceMob({.id = mobNumber(1),
                    .slots = track(omf_.filler(100)),
                    .descriptor = omf_.descriptor({.classID = "MDTP"})});
    const ObjectBuilder clip = clipOf(mobNumber(1));
    expectRecord(resolved(omf_, clip),
                 "Source Mob 00000001-00000000-00000000 TrackID 1 resolves through FILL, not a "
                 "direct Source Clip at SCLP[" +
                     std::to_string(clip.id()) + "]");
}

TEST_F(SourceChain, MobWithoutASegmentIsReported) {
    omf_.masterMob({.id = mobNumber(1), .slots = track(std::nullopt)});
    const ObjectBuilder clip = clipOf(mobNumber(1));
    expectRecord(resolved(omf_, clip),
                 "Source Mob 00000001-00000000-00000000 TrackID 1 resolves through no segment, "
                 "not a direct Source Clip at SCLP[" +
                     std::to_string(clip.id()) + "]");
}

TEST_F(SourceChain, SegmentWithoutAClassIsNoSegment) {
    omf_.masterMob({.id = mobNumber(1), .slots = track(omf_.classless().int32("X", 1))});
    const ObjectBuilder clip = clipOf(mobNumber(1));
    expectRecord(resolved(omf_, clip),
                 "Source Mob 00000001-00000000-00000000 TrackID 1 resolves through no segment, "
                 "not a direct Source Clip at SCLP[" +
                     std::to_string(clip.id()) + "]");
}

TEST_F(SourceChain, SequenceIsNoDirectClip) {
    audioFile();
    omf_.masterMob({.id = mobNumber(1), .slots = track(omf_.sequence({clipOf(file_)}))});
    const ObjectBuilder clip = clipOf(mobNumber(1));
    expectRecord(resolved(omf_, clip),
                 "Source Mob 00000001-00000000-00000000 TrackID 1 resolves through SEQU, not a "
                 "direct Source Clip at SCLP[" +
                     std::to_string(clip.id()) + "]");
}

TEST_F(SourceChain, CompositionMayStandInTheChain) {
    audioFile();
    omf_.composition({.slots = track(clipOf(file_)), .id = mobNumber(1)});
    EXPECT_TRUE(resolved(omf_, clipOf(mobNumber(1))).source);
}

/// Whether a Source Mob is audio, told by where the chain through it ends: at it or behind it.
class AudioSource : public SourceChain {
  protected:
    AudioSource() { audioFile(); }
    bool endsAt(ObjectID descriptor, const std::string& kind) {
        omf_.setSegmentKind(kind);
        const ObjectBuilder onward = clipOf(file_);
        omf_.setSegmentKind("omfi:data:Sound");
        const ObjectBuilder mob =
            omf_.sourceMob({.id = mobNumber(1), .slots = track(onward), .descriptor = descriptor});
        return resolved(omf_, clipOf(mobNumber(1))).source.value().mob == object(mob);
    }
    ObjectID withRate(std::string_view classID) {
        return omf_.descriptor({.classID = std::string(classID), .sampleRate = Ratio{48'000}});
    }
};

TEST_F(AudioSource, WaveDescriptorIsAudioWhateverItsTracks) {
    EXPECT_TRUE(endsAt(omf_.descriptor({.classID = "WAVD"}), "omfi:data:Picture"));
}

TEST_F(AudioSource, AifcDescriptorIsAudioWhateverItsTracks) {
    EXPECT_TRUE(endsAt(omf_.descriptor({.classID = "AIFD"}), "omfi:data:Picture"));
}

TEST_F(AudioSource, OtherDescriptorWithARateAndASoundTrackIsAudio) {
    EXPECT_TRUE(endsAt(withRate("MDFL"), "omfi:data:StereoSOUND"));
}

TEST_F(AudioSource, DescriptorWithARateButPictureTracksIsNot) {
    EXPECT_FALSE(endsAt(withRate("MDFL"), "omfi:data:Picture"));
}

TEST_F(AudioSource, OnlyTheWordSoundIsAHint) {
    EXPECT_FALSE(endsAt(withRate("MDFL"), "omfi:data:Audio"));
}

TEST_F(AudioSource, DescriptorWithoutARateIsNotAudio) {
    EXPECT_FALSE(endsAt(omf_.descriptor({.classID = "MDFL"}), "omfi:data:Sound"));
}

TEST_F(AudioSource, RateOverZeroIsNoRate) {
    EXPECT_FALSE(endsAt(omf_.descriptor({.classID = "MDFL", .sampleRate = Ratio{48'000, 0}}),
                        "omfi:data:Sound"));
}

TEST_F(AudioSource, DescriptorWithoutAClassMayBeAudio) {
    EXPECT_TRUE(
        endsAt(omf_.classless().rational("OMFI:MDFL:SampleRate", {48'000}), "omfi:data:Sound"));
}

TEST_F(AudioSource, OnlySourceMobsAreAudio) {
    const ObjectID descriptor = omf_.descriptor({.classID = "WAVD"});
    omf_.masterMob({.id = mobNumber(1), .slots = track(clipOf(file_)), .descriptor = descriptor});
    EXPECT_EQ(resolved(omf_, clipOf(mobNumber(1))).source.value().mobID, (OMFUID{0xF, 0, 0}));
}

TEST_F(AudioSource, FirstOwnerOfASharedDescriptorTells) {
    const ObjectID shared = withRate("MDFL");
    omf_.setSegmentKind("omfi:data:Picture");
    omf_.sourceMob({.id = mobNumber(2), .slots = track(omf_.filler(1)), .descriptor = shared});
    EXPECT_FALSE(endsAt(shared, "omfi:data:Sound"));
}

TEST_F(AudioSource, AnySoundTrackOfTheOwnerWillDo) {
    omf_.setSegmentKind("omfi:data:Picture");
    const ObjectBuilder picture = clipOf(file_);
    omf_.setSegmentKind("omfi:data:Sound");
    const ObjectID sound = omf_.slot({.editRate = Ratio{48'000}, .segment = omf_.filler(1)});
    const ObjectID bare = omf_.slot(SlotSpec{});
    const std::vector<ObjectID> slots{bare, track(picture).at(0), sound};
    const ObjectBuilder mob =
        omf_.sourceMob({.id = mobNumber(1), .slots = slots, .descriptor = withRate("MDFL")});
    EXPECT_EQ(resolved(omf_, clipOf(mobNumber(1))).source.value().mob, object(mob));
}

TEST_F(AudioSource, MobWithoutADescriptorIsNotAudio) {
    omf_.sourceMob({.id = mobNumber(1), .slots = track(clipOf(file_))});
    EXPECT_EQ(resolved(omf_, clipOf(mobNumber(1))).source.value().mobID, (OMFUID{0xF, 0, 0}));
}

}  // namespace
}  // namespace trellant::testing
