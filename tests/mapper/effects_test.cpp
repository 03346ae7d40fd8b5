// SPDX-License-Identifier: Apache-2.0
// Effect invocations: which are rendered, what their inputs become, how inputs merge.
#include "song.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int32_t input = -1;
const std::string gainID = "omfi:effect:MonoAudioGain";
const std::string panID = "omfi:effect:MonoAudioPan";

/// A slot whose sequence is the effect and a clip of 10 from source position 9.
class EffectInSequence : public ::testing::Test {
  protected:
    void place(ObjectID effect) {
        const ObjectID sequence = omf_.sequence({effect, song_.clip(10, 9)});
        song_.addSlot(sequence);
        mapped_ = song_.map();
        path_ = song_.path() + step("SEQU", sequence) + "/component[0]" + step("EFFE", effect);
    }
    void expectSilence(std::int64_t length) {
        EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{length, 10, 9}));
    }
    void expectRecord(std::string_view text) {
        EXPECT_THAT(recordsOf(mapped_), ElementsAre(unsupportedLine(0, text, path_)));
    }

    Song song_;
    OmfBuilder& omf_ = song_.omf;
    Mapped mapped_;
    std::string path_;
};

TEST_F(EffectInSequence, UnknownEffectIsSilenceOfItsLength) {
    Song song;
    const ObjectID effect = song.omf.effect({.effectID = "omfi:effect:Flip", .length = 48});
    const ObjectID sequence = song.omf.sequence({effect, song.clip(48)});
    song.addSlot({.editRate = Ratio{48}, .segment = sequence});
    const Mapped mapped = song.map();
    EXPECT_THAT(
        recordsOf(mapped),
        ElementsAre(unsupportedLine(
            0, "OMF effect omfi:effect:Flip is not rendered by TrellantOMFReader",
            song.path() + step("SEQU", sequence) + "/component[0]" + step("EFFE", effect))));
    EXPECT_THAT(placedIn(mapped), ElementsAre(Placed{100, 100, 0}));
}

TEST_F(EffectInSequence, UnknownEffectLosesItsInputs) {
    place(omf_.effect(
        {.effectID = "omfi:effect:Flip", .length = 30, .slots = {{input, song_.clip(30)}}}));
    expectSilence(30);
}

TEST_F(EffectInSequence, DissolveOutsideATransitionIsNotRendered) {
    place(omf_.effect({.effectID = "omfi:effect:SimpleMonoAudioDissolve", .length = 30}));
    expectSilence(30);
    expectRecord(
        "OMF effect omfi:effect:SimpleMonoAudioDissolve is not rendered by TrellantOMFReader");
}

TEST_F(EffectInSequence, EffectWithoutADefinitionIsReported) {
    place(omf_.effect({.length = 30, .slots = {{input, song_.clip(30)}}}));
    expectSilence(30);
    expectRecord("effect invocation has no readable EffectID");
}

TEST_F(EffectInSequence, DefinitionWithoutAnIdentifierIsReported) {
    place(omf_.effect({.length = 30}).ref("OMFI:EFFE:EffectKind", omf_.object("EDEF")));
    expectSilence(30);
    expectRecord("effect invocation has no readable EffectID");
}

TEST_F(EffectInSequence, NegativeLengthIsZero) {
    place(omf_.effect({.effectID = "omfi:effect:Flip", .length = -30}));
    expectSilence(0);
}

TEST_F(EffectInSequence, EffectWithoutInputsIsReportedByItsOwnIdentifier) {
    place(omf_.effect({.effectID = "OMFI:effect:monoAUDIOgain",
                       .length = 30,
                       .slots = {{1, omf_.constantValue({1, 2})}, {0, song_.clip(30)}}}));
    expectSilence(30);
    expectRecord("OMFI:effect:monoAUDIOgain has no input slot (-1)");
}

TEST_F(EffectInSequence, PanWithoutInputsIsReported) {
    place(omf_.effect({.effectID = panID, .length = 30}));
    expectSilence(30);
    expectRecord("omfi:effect:MonoAudioPan has no input slot (-1)");
}

TEST_F(EffectInSequence, InputSlotWithoutAValueIsNoInput) {
    place(omf_.effect({.effectID = gainID, .length = 30, .slots = {{input, std::nullopt}}}));
    expectSilence(30);
    expectRecord("omfi:effect:MonoAudioGain has no input slot (-1)");
}

TEST_F(EffectInSequence, InputSlotsWithoutAValueAreNotCounted) {
    // The reported path tells that the strange input is the first.
    const ObjectID strange = omf_.segment("XYZW", 30);
    place(omf_.effect(
        {.effectID = gainID, .length = 30, .slots = {{input, std::nullopt}, {input, strange}}}));
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "unknown OMF component class XYZW",
                                            path_ + "/input[0]" + step("", strange))));
}

TEST_F(EffectInSequence, InputsAreNumberedInOrder) {
    const ObjectID first = omf_.segment("XYZV", 30);
    const ObjectID second = omf_.segment("XYZW", 30);
    place(
        omf_.effect({.effectID = panID,
                     .length = 30,
                     .slots = {{input, first}, {1, omf_.constantValue({1, 2})}, {input, second}}}));
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "unknown OMF component class XYZV",
                                            path_ + "/input[0]" + step("", first)),
                            unsupportedLine(1, "unknown OMF component class XYZW",
                                            path_ + "/input[1]" + step("", second))));
}

TEST_F(EffectInSequence, InputsStartTogetherAndTheLongestCounts) {
    place(omf_.effect(
        {.effectID = gainID,
         .length = 77,
         .slots = {
             {input, song_.clip(30, 1)}, {input, song_.clip(50, 2)}, {input, song_.clip(40, 3)}}}));
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 30, 1}, Placed{0, 50, 2}, Placed{0, 40, 3},
                                               Placed{50, 10, 9}));
}

TEST_F(EffectInSequence, EmptyInputsLeaveTheEffectsOwnLength) {
    place(omf_.effect({.effectID = gainID, .length = 30, .slots = {{input, omf_.filler(0)}}}));
    expectSilence(30);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(EffectInSequence, InputOfNegativeDurationLeavesTheEffectsOwnLength) {
    // A dissolve at the start moves the input's short clip to before its beginning.
    place(omf_.effect({.effectID = gainID,
                       .length = 30,
                       .slots = {{input, omf_.sequence({omf_.dissolve(20), omf_.filler(5)})}}}));
    expectSilence(30);
}

TEST_F(EffectInSequence, FinalRenderingReplacesTheEffect) {
    place(omf_.effect({.effectID = "omfi:effect:Flip",
                       .length = 30,
                       .slots = {{input, song_.clip(30, 1)}}})
              .ref("OMFI:EFFE:FinalRendering", song_.clip(25, 5)));
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 25, 5}, Placed{25, 10, 9}));
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(EffectInSequence, FinalRenderingOfAGainIsNotMadeLouder) {
    place(omf_.gain(song_.clip(30, 1), omf_.constantValue({1, 2}))
              .ref("OMFI:EFFE:FinalRendering", song_.clip(30, 5)));
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 30, 5}, Placed{30, 10, 9}));
    EXPECT_EQ(mapped_.timeline.events.at(0).fixedClipGain, 1.0);
}

TEST_F(EffectInSequence, FinalRenderingThatIsNoClipIsIgnored) {
    place(omf_.gain(song_.clip(30, 1), omf_.constantValue({1, 2}))
              .ref("OMFI:EFFE:FinalRendering", omf_.sequence({song_.clip(30, 5)})));
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 30, 1}, Placed{30, 10, 9}));
    EXPECT_EQ(mapped_.timeline.events.at(0).fixedClipGain, 0.5);
}

TEST_F(EffectInSequence, FinalRenderingKeepsItsFades) {
    place(omf_.effect({}).ref("OMFI:EFFE:FinalRendering",
                              song_.clip(30, FadeSpec{5, 2}, std::nullopt)));
    EXPECT_EQ(described(mapped_.timeline.events.at(0).fadeIn), "fadeIn 5 power");
}

/// A slot that is one gain effect of several inputs without a control.
class EffectMerge : public ::testing::Test {
  protected:
    void place(const std::vector<ObjectID>& inputs) {
        std::vector<EffectSlotSpec> slots;
        for (const ObjectID segment : inputs) {
            slots.push_back({input, segment});
        }
        song_.addSlot(omf_.effect({.effectID = gainID, .length = 30, .slots = slots}));
        mapped_ = song_.map();
    }
    const AAFClipEvent& event(std::size_t index) { return mapped_.timeline.events.at(index); }

    Song song_;
    OmfBuilder& omf_ = song_.omf;
    Mapped mapped_;
};

TEST_F(EffectMerge, SameClipAtTheSameTimeIsOne) {
    const ObjectID clip = song_.clip(100, 1);
    place({clip, omf_.sequence({clip, song_.clip(50, 2)}), clip});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 1}, Placed{100, 50, 2}));
}

TEST_F(EffectMerge, SameClipAtAnotherTimeIsAnother) {
    const ObjectID clip = song_.clip(100, 1);
    place({clip, omf_.sequence({omf_.filler(10), clip})});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 1}, Placed{10, 100, 1}));
}

TEST_F(EffectMerge, EqualClipsOfDifferentObjectsStayApart) {
    place({song_.clip(100, 1), song_.clip(100, 1)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 1}, Placed{0, 100, 1}));
}

TEST_F(EffectMerge, MissingFadesAreTakenFromTheNewcomer) {
    const ObjectID clip = song_.clip(100, 1);
    const ObjectID faded = omf_.sequence({clip, omf_.dissolve(20), song_.clip(50, 2)});
    place({clip, faded});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 1}, Placed{80, 50, 2}));
    EXPECT_EQ(described(event(0).fadeIn), "none");
    EXPECT_EQ(described(event(0).fadeOut), "fadeOut 20 linear");
}

TEST_F(EffectMerge, FadeInIsTakenFromTheNewcomerToo) {
    const ObjectID clip = song_.clip(100, 1);
    const ObjectID plain = omf_.sequence({omf_.filler(80), clip});
    place({plain, omf_.sequence({omf_.filler(100), omf_.dissolve(20), clip})});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{80, 100, 1}));
    EXPECT_EQ(described(event(0).fadeIn), "fadeIn 20 linear");
}

TEST_F(EffectMerge, PresentFadesStayThoseOfTheFirst) {
    const ObjectID clip = song_.clip(100, 1);
    const ObjectID slow = omf_.sequence({clip, omf_.dissolve(20), omf_.filler(50)});
    const ObjectID fast = omf_.sequence({clip, omf_.dissolve(10), omf_.filler(50)});
    place({slow, fast});
    EXPECT_EQ(described(event(0).fadeOut), "fadeOut 20 linear");
}

TEST_F(EffectMerge, MissingPanIsTakenFromTheNewcomer) {
    const ObjectID clip = song_.clip(100);
    place({clip, omf_.pan(clip, omf_.constantValue({1, 4})),
           omf_.pan(clip, omf_.constantValue({3, 4}))});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 0}));
    EXPECT_EQ(mapped_.timeline.tracks.at(0).fixedPan, 0.25);
}

TEST_F(EffectMerge, GainAndAutomationStayThoseOfTheFirst) {
    const ObjectID clip = song_.clip(100);
    const ObjectID varying = omf_.varyingValue({{{0}, {0}}, {{1}, {1}}});
    place({clip, omf_.gain(clip, omf_.constantValue({1, 2})), omf_.gain(clip, varying)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 0}));
    EXPECT_EQ(event(0).fixedClipGain, 1.0);
    EXPECT_EQ(described(event(0).clipGainAutomation), "none");
}

TEST_F(EffectMerge, LaterPlainCopyDoesNotUndoTheFirstsGain) {
    const ObjectID clip = song_.clip(100);
    place({omf_.gain(clip, omf_.constantValue({1, 2})), clip});
    EXPECT_EQ(event(0).fixedClipGain, 0.5);
}

TEST_F(EffectMerge, EqualDraftsWithinOneInputMergeToo) {
    // The dissolve moves the second use of the clip back to the start of the first.
    const ObjectID clip = song_.clip(20, 1);
    place({omf_.sequence({clip, omf_.dissolve(20), clip})});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 20, 1}));
    EXPECT_EQ(described(event(0).fadeIn), "fadeIn 20 linear");
    EXPECT_EQ(described(event(0).fadeOut), "fadeOut 20 linear");
}

TEST_F(EffectMerge, WithoutAnEffectNothingMerges) {
    const ObjectID clip = song_.clip(20, 1);
    song_.addSlot(omf_.sequence({clip, omf_.dissolve(20), clip}));
    EXPECT_THAT(placedIn(song_.map()), ElementsAre(Placed{0, 20, 1}, Placed{0, 20, 1}));
}

}  // namespace
}  // namespace trellant::testing
