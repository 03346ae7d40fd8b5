// SPDX-License-Identifier: Apache-2.0
// Each kind of segment on its own and in the middle of a sequence.
#include "song.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A slot whose sequence is a clip of 100, the segment in question and a clip of 50.
class SegmentInSequence : public ::testing::Test {
  protected:
    void place(ObjectID segment) {
        sequence_ = song_.omf.sequence({song_.clip(100), segment, song_.clip(50, 10)});
        song_.addSlot(sequence_);
        mapped_ = song_.map();
    }
    /// The object path of the segment's place.
    std::string componentPath() { return song_.path() + step("SEQU", sequence_) + "/component[1]"; }
    /// The segment lasts `length` and gives no sound.
    void expectSilence(std::int64_t length) {
        EXPECT_THAT(placedIn(mapped_),
                    ElementsAre(Placed{0, 100, 0}, Placed{100 + length, 50, 10}));
        EXPECT_EQ(lengthOf(mapped_), 150 + length);
    }

    Song song_;
    ObjectID sequence_ = 0;
    Mapped mapped_;
};

TEST(SlotSegment, ClipAloneStartsAtZero) {
    Song song;
    song.addSlot(song.clip(100, 20));
    const Mapped mapped = song.map();
    EXPECT_THAT(placedIn(mapped), ElementsAre(Placed{0, 100, 20}));
    EXPECT_EQ(lengthOf(mapped), 100);
}

TEST(SlotSegment, MissingOrNegativeLengthIsZero) {
    Song song;
    song.addSlot(song.clip(-5));
    song.addSlot(song.clip(100).without("OMFI:CPNT:Length"));
    EXPECT_THAT(placedIn(song.map()), ElementsAre(Placed{0, 0, 0}, Placed{0, 0, 0}));
}

TEST(SlotSegment, LengthsBeyond32BitsAreRead) {
    Song song;
    song.addSlot(song.clip(500'000'000'000));
    EXPECT_THAT(placedIn(song.map()), ElementsAre(Placed{0, 500'000'000'000, 0}));
}

TEST(SlotSegment, TransitionAloneIsAnUnknownComponent) {
    Song song;
    const ObjectID transition = song.omf.transition({.length = 40});
    song.addSlot(transition);
    song.addSlot(song.clip(10));
    const Mapped mapped = song.map();
    EXPECT_THAT(recordsOf(mapped),
                ElementsAre(unsupportedLine(0, "unknown OMF component class TRAN",
                                            song.path() + step("", transition))));
    EXPECT_EQ(lengthOf(mapped), 40);
}

TEST_F(SegmentInSequence, FillerIsSilence) {
    place(song_.omf.filler(30));
    expectSilence(30);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(SegmentInSequence, FillerOfNegativeLengthTakesNoTime) {
    place(song_.omf.filler(-30));
    expectSilence(0);
}

TEST_F(SegmentInSequence, TimecodeEdgecodeAndValuesAreSilentTime) {
    for (const std::string_view classID : {"TCCP", "CVAL", "VVAL", "ECCP"}) {
        Song song;
        song.addSlot(
            song.omf.sequence({song.clip(100), song.omf.segment(classID, 30), song.clip(50)}));
        const Mapped mapped = song.map();
        EXPECT_THAT(placedIn(mapped), ElementsAre(Placed{0, 100, 0}, Placed{130, 50, 0}));
        EXPECT_THAT(recordsOf(mapped), IsEmpty()) << classID;
    }
}

TEST_F(SegmentInSequence, EditRateConverterIsReported) {
    const ObjectID converter = song_.omf.segment("ERAT", 30);
    place(converter);
    expectSilence(30);
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(
                    0, "ERAT composition operation is not rendered by TrellantOMFReader",
                    componentPath() + step("ERAT", converter))));
}

TEST_F(SegmentInSequence, MediaGroupIsReported) {
    const ObjectID group = song_.omf.segment("MGRP", 30);
    place(group);
    expectSilence(30);
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(
                    0, "MGRP composition operation is not rendered by TrellantOMFReader",
                    componentPath() + step("MGRP", group))));
}

TEST_F(SegmentInSequence, UnknownClassIsReportedAndTakesItsTime) {
    const ObjectID strange = song_.omf.segment("XYZW", 30);
    place(strange);
    expectSilence(30);
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "unknown OMF component class XYZW",
                                            componentPath() + step("", strange))));
}

TEST_F(SegmentInSequence, ClassIsCaseSensitive) {
    const ObjectID strange = song_.omf.segment("sclp", 30);
    place(strange);
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "unknown OMF component class sclp",
                                            componentPath() + step("", strange))));
}

TEST_F(SegmentInSequence, MissingClassReadsAsQuestionMarks) {
    const ObjectID classless = song_.omf.classless().position("OMFI:CPNT:Length", 30);
    place(classless);
    expectSilence(30);
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "unknown OMF component class ????",
                                            componentPath() + step("", classless))));
}

TEST_F(SegmentInSequence, EmptyClassReadsAsEmpty) {
    const ObjectID strange = song_.omf.segment("", 30);
    place(strange);
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "unknown OMF component class ",
                                            componentPath() + step("", strange))));
}

TEST_F(SegmentInSequence, ObjectThatDoesNotExistIsReported) {
    place(60'000);
    expectSilence(0);
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "unknown OMF component class ????",
                                            componentPath() + step("", 60'000))));
}

TEST_F(SegmentInSequence, SelectorPlaysItsSelectedSegment) {
    place(song_.omf.selector(song_.clip(30, 5)));
    EXPECT_THAT(placedIn(mapped_),
                ElementsAre(Placed{0, 100, 0}, Placed{100, 30, 5}, Placed{130, 50, 10}));
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(SegmentInSequence, SelectorLastsAsLongAsWhatItSelects) {
    place(song_.omf.selector(song_.omf.filler(30)).position("OMFI:CPNT:Length", 77));
    expectSilence(30);
}

TEST_F(SegmentInSequence, SelectorWithoutASelectionIsReported) {
    const ObjectID selector = song_.omf.segment("SLCT", 30);
    place(selector);
    expectSilence(30);
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "selector has no readable selected segment",
                                            componentPath() + step("SLCT", selector))));
}

TEST_F(SegmentInSequence, RecordsInsideASelectorNameIt) {
    const ObjectID strange = song_.omf.segment("XYZW", 30);
    const ObjectID selector = song_.omf.selector(strange);
    place(selector);
    EXPECT_THAT(
        recordsOf(mapped_),
        ElementsAre(unsupportedLine(0, "unknown OMF component class XYZW",
                                    componentPath() + step("SLCT", selector) + step("", strange))));
}

TEST_F(SegmentInSequence, NestedScopePlaysItsLastSlot) {
    place(song_.omf.nestedScope({song_.clip(70), song_.clip(30, 5)}));
    EXPECT_THAT(placedIn(mapped_),
                ElementsAre(Placed{0, 100, 0}, Placed{100, 30, 5}, Placed{130, 50, 10}));
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(SegmentInSequence, NestedScopeWithoutSlotsIsReported) {
    const ObjectID scope = song_.omf.nestedScope({}).position("OMFI:CPNT:Length", 30);
    place(scope);
    expectSilence(30);
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "NestedScope has no slots",
                                            componentPath() + step("NEST", scope))));
}

TEST_F(SegmentInSequence, RecordsInsideANestedScopeNameIt) {
    const ObjectID strange = song_.omf.segment("XYZW", 30);
    const ObjectID scope = song_.omf.nestedScope({strange});
    place(scope);
    EXPECT_THAT(
        recordsOf(mapped_),
        ElementsAre(unsupportedLine(0, "unknown OMF component class XYZW",
                                    componentPath() + step("NEST", scope) + step("", strange))));
}

TEST_F(SegmentInSequence, InnerSequenceIsPlacedWhereItStands) {
    place(song_.omf.sequence({song_.omf.filler(5), song_.clip(30, 5)}));
    EXPECT_THAT(placedIn(mapped_),
                ElementsAre(Placed{0, 100, 0}, Placed{105, 30, 5}, Placed{135, 50, 10}));
}

TEST_F(SegmentInSequence, SequenceWithoutComponentsTakesNoTime) {
    place(song_.omf.segment("SEQU", 30));
    expectSilence(0);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST(SlotSegment, SameRecordAtTheSamePathIsRepeated) {
    Song song;
    const ObjectID strange = song.omf.segment("XYZW", 10);
    const ObjectID twice = song.addSlot(strange);
    const ObjectID once = song.addSlot(song.clip(10));
    song.composition().refs("OMFI:MOBJ:Slots", {twice, twice, once});
    const std::string path = song.path() + step("", strange);
    EXPECT_THAT(recordsOf(song.map()),
                ElementsAre(unsupportedLine(0, "unknown OMF component class XYZW", path),
                            unsupportedLine(1, "unknown OMF component class XYZW", path)));
}

}  // namespace
}  // namespace trellant::testing
