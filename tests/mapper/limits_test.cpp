// SPDX-License-Identifier: Apache-2.0
// How deep and how far the walk goes.
#include "song.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::string_view tooDeep = "composition nesting exceeds depth limit";

class DepthLimit : public ::testing::Test {
  protected:
    /// `segment` inside `levels` nested scopes; `path` tells their steps.
    ObjectID nested(ObjectID segment, int levels) {
        for (int level = 0; level < levels; ++level) {
            segment = omf_.nestedScope({segment});
            below_.insert(0, step("NEST", segment));
        }
        return segment;
    }
    /// Maps the segment in slot 0, with a clip of 1 in slot 1.
    void place(ObjectID segment) {
        song_.addSlot(segment);
        song_.addSlot(song_.clip(1));
        mapped_ = song_.map();
    }
    void expectTooDeep(const std::string& below) {
        EXPECT_THAT(recordsOf(mapped_),
                    ElementsAre(unsupportedLine(0, tooDeep, song_.path() + below)));
        EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 1, 0}));
    }

    Song song_;
    OmfBuilder& omf_ = song_.omf;
    std::string below_;
    Mapped mapped_;
};

TEST_F(DepthLimit, FortyEightLevelsAreWalked) {
    place(nested(song_.clip(50, 2), 47));
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 50, 2}, Placed{0, 1, 0}));
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(DepthLimit, FortyNinthLevelIsReplacedByItsLength) {
    place(nested(song_.clip(50, 2), 48));
    expectTooDeep(below_);
    EXPECT_EQ(lengthOf(mapped_), 50);
}

TEST_F(DepthLimit, SelectorsCountAsOneLevel) {
    place(nested(omf_.selector(song_.clip(50)), 46));
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
    Song song;
    ObjectID segment = song.clip(50);
    std::string below;
    for (int level = 0; level < 48; ++level) {
        segment = song.omf.selector(segment);
        below.insert(0, step("SLCT", segment));
    }
    song.addSlot(segment);
    song.addSlot(song.clip(1));
    EXPECT_THAT(recordsOf(song.map()),
                ElementsAre(unsupportedLine(0, tooDeep, song.path() + below)));
}

TEST_F(DepthLimit, NestedSegmentsOfSequencesCountAsTwo) {
    // The sequence stands at level 46, its selector at 48.
    const ObjectID sequence = omf_.sequence({omf_.selector(song_.clip(50))});
    place(nested(sequence, 46));
    expectTooDeep(below_ + step("SEQU", sequence) + "/component[0]");
    EXPECT_EQ(lengthOf(mapped_), 50);
}

TEST_F(DepthLimit, SequenceOneLevelHigherStillWalksItsSegments) {
    // The sequence at 44, the selector at 46, the clip at 47.
    place(nested(omf_.sequence({omf_.selector(song_.clip(50, 2))}), 44));
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 50, 2}, Placed{0, 1, 0}));
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(DepthLimit, ClipsOfTheDeepestSequenceArePlaced) {
    place(nested(omf_.sequence({song_.clip(50, 2)}), 47));
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 50, 2}, Placed{0, 1, 0}));
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(DepthLimit, InputsOfEffectsCountAsTwo) {
    const ObjectID effect = omf_.gain(song_.clip(50), omf_.constantValue({1, 2}));
    place(nested(effect, 46));
    expectTooDeep(below_ + step("EFFE", effect) + "/input[0]");
}

TEST_F(DepthLimit, InputsOneLevelHigherAreWalked) {
    place(nested(omf_.gain(song_.clip(50, 2), omf_.constantValue({1, 2})), 45));
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 50, 2}, Placed{0, 1, 0}));
}

TEST_F(DepthLimit, FinalRenderingCountsAsTwo) {
    const ObjectID effect = omf_.effect({}).ref("OMFI:EFFE:FinalRendering", song_.clip(50));
    place(nested(effect, 46));
    expectTooDeep(below_ + step("EFFE", effect) + "/FinalRendering");
    EXPECT_EQ(lengthOf(mapped_), 50);
}

TEST_F(DepthLimit, ScopeReferencesCountAsOne) {
    // The reference at level 46, its target at 47, what that selects at 48.
    const ObjectID target = omf_.selector(song_.clip(50));
    const ObjectID reference = omf_.scopeReference(50, 0, 1);
    const ObjectID scope = omf_.nestedScope({target, reference});
    place(nested(scope, 45));
    expectTooDeep(below_ + step("NEST", scope) + step("SREF", reference) + step("SLCT", target));
}

TEST_F(DepthLimit, SequenceThatContainsItselfEnds) {
    const ObjectBuilder sequence = omf_.sequence({});
    omf_.at(sequence).refs("OMFI:SEQU:Components", {sequence}).position("OMFI:CPNT:Length", 70);
    place(sequence);
    std::string below;
    for (int level = 0; level < 24; ++level) {
        below += step("SEQU", sequence) + "/component[0]";
    }
    expectTooDeep(below);
    EXPECT_EQ(lengthOf(mapped_), 70);
}

TEST_F(DepthLimit, SequenceThatListsItselfTwiceEndsOnEveryWay) {
    // It stands at the levels 40, 42, 44 and 46: sixteen ways lead to level 48.
    const ObjectBuilder sequence = omf_.sequence({});
    omf_.at(sequence)
        .refs("OMFI:SEQU:Components", {sequence, sequence})
        .position("OMFI:CPNT:Length", 5);
    place(nested(sequence, 40));
    const std::vector<std::string> records = recordsOf(mapped_);
    ASSERT_EQ(records.size(), 16U);
    const auto way = [&](int component) {
        std::string steps;
        for (int level = 0; level < 4; ++level) {
            steps += step("SEQU", sequence) + "/component[" + std::to_string(component) + "]";
        }
        return song_.path() + below_ + steps;
    };
    EXPECT_EQ(records.front(), unsupportedLine(0, tooDeep, way(0)));
    EXPECT_EQ(records.back(), unsupportedLine(15, tooDeep, way(1)));
    EXPECT_EQ(lengthOf(mapped_), 80);
}

TEST_F(DepthLimit, SelectorThatSelectsItselfEnds) {
    const ObjectBuilder selector = omf_.segment("SLCT", 70);
    omf_.at(selector).ref("OMFI:SLCT:Selected", selector);
    place(selector);
    std::string below;
    for (int level = 0; level < 48; ++level) {
        below += step("SLCT", selector);
    }
    expectTooDeep(below);
}

class VisitLimit : public ::testing::Test {
  protected:
    /// `levels` sequences, each listing the next `width` times, around `innermost`.
    ObjectID fan(ObjectID innermost, int levels, std::size_t width) {
        for (int level = 0; level < levels; ++level) {
            innermost = song_.omf.sequence(std::vector<ObjectID>(width, innermost));
        }
        return innermost;
    }

    static constexpr const char* expansionText_ =
        "Unsupported OMF/Bento feature: composition expands to more than 10000000 segments";
    Song song_;
};

TEST_F(VisitLimit, SharedSequencesThatExpandWithoutEndFail) {
    // Eight levels of ten: a hundred million fillers in a few kilobytes.
    song_.addSlot(fan(song_.omf.filler(0), 8, 10));
    song_.addSlot(song_.clip(1));
    const Bytes image = song_.image();
    EXPECT_LT(image.size(), 8'192U);
    EXPECT_EQ(mappingError(image), expansionText_);
}

TEST_F(VisitLimit, MillionSegmentsAreWalked) {
    song_.addSlot(fan(song_.omf.filler(0), 6, 10));
    song_.addSlot(song_.clip(1));
    EXPECT_THAT(placedIn(song_.map()), ElementsAre(Placed{0, 1, 0}));
}

TEST_F(VisitLimit, CountsOverAllSlots) {
    // Six million fillers in a slot.
    const ObjectID million = fan(song_.omf.filler(0), 6, 10);
    const ObjectID six = song_.omf.sequence(std::vector<ObjectID>(6, million));
    const ObjectID slot = song_.addSlot(six);
    const ObjectID clipSlot = song_.addSlot(song_.clip(1));
    EXPECT_EQ(mappingError(song_.image()), "");
    song_.composition().refs("OMFI:MOBJ:Slots", {slot, slot, clipSlot});
    EXPECT_EQ(mappingError(song_.image()), expansionText_);
}

TEST_F(VisitLimit, SlotsThatAreNoSoundDoNotCount) {
    // A hundred million fillers of picture; three hundred thousand of sound have all slots counted.
    song_.omf.setSegmentKind("omfi:data:Picture");
    song_.addSlot(fan(song_.omf.filler(0), 8, 10));
    song_.omf.setSegmentKind("omfi:data:Sound");
    const ObjectID many = fan(song_.omf.filler(0), 5, 10);
    song_.addSlot(song_.omf.sequence({many, many, many, song_.clip(1)}));
    const Mapped mapped = song_.map();
    EXPECT_THAT(placedIn(mapped), ElementsAre(Placed{0, 1, 0}));
    EXPECT_THAT(recordsOf(mapped), IsEmpty());
}

TEST_F(VisitLimit, SlotsThatCannotBeMeasuredDoNotCount) {
    song_.addSlot({.editRate = Ratio{0}, .segment = fan(song_.omf.filler(0), 8, 10)});
    const ObjectID many = fan(song_.omf.filler(0), 5, 10);
    song_.addSlot(song_.omf.sequence({many, many, many, song_.clip(1)}));
    const Mapped mapped = song_.map();
    EXPECT_THAT(placedIn(mapped), ElementsAre(Placed{0, 1, 0}));
    EXPECT_THAT(
        recordsOf(mapped),
        ElementsAre(lossLine(0, "whole audio track 1 dropped: the slot carries no usable edit rate",
                             song_.path())));
}

TEST_F(VisitLimit, EffectsThatExpandWithoutEndFail) {
    ObjectID segment = song_.omf.filler(0);
    for (int level = 0; level < 8; ++level) {
        segment = song_.omf.effect({.effectID = "omfi:effect:MonoAudioGain",
                                    .slots = std::vector<EffectSlotSpec>(10, {-1, segment})});
    }
    song_.addSlot(segment);
    EXPECT_EQ(mappingError(song_.image()), expansionText_);
}

TEST_F(VisitLimit, ScopesThatReferToThemselvesManyTimesFail) {
    // Each reference of the scope's last slot leads back to that slot.
    const ObjectID back = song_.omf.scopeReference(0, 0, 0);
    const ObjectID sequence = song_.omf.sequence(std::vector<ObjectID>(20, back));
    song_.addSlot(song_.omf.nestedScope({song_.omf.filler(0), sequence}));
    song_.addSlot(song_.clip(1));
    EXPECT_EQ(mappingError(song_.image()), expansionText_);
}

TEST_F(VisitLimit, SequenceOfAClipAndItselfManyTimesFails) {
    const ObjectBuilder sequence = song_.omf.sequence({});
    song_.omf.at(sequence).refs("OMFI:SEQU:Components",
                                {song_.clip(1), sequence, sequence, sequence});
    song_.addSlot(sequence);
    EXPECT_EQ(mappingError(song_.image()), expansionText_);
}

}  // namespace
}  // namespace trellant::testing
