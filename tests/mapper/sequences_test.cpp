// SPDX-License-Identifier: Apache-2.0
// Sequences with transitions that are cuts: what they take from their neighbours.
#include "sequence_fixture.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::string_view trimText =
    "cut-point trim around nested segment requires effect-aware rendering";

class CutSequence : public SequenceTest {
  protected:
    std::string cutLine(int number, ObjectID transition) {
        return unsupportedLine(number, cutText, path() + step("TRAN", transition));
    }
    std::string trimLine(int number, int component) {
        return unsupportedLine(number, trimText, componentPath(component));
    }
    ObjectBuilder cut(std::int64_t length, std::int64_t cutPoint) {
        return omf_.transition({.length = length, .cutPoint = cutPoint});
    }
};

TEST_F(CutSequence, ComponentsFollowEachOther) {
    place({song_.clip(100), omf_.filler(20), song_.clip(30, 7)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 0}, Placed{120, 30, 7}));
    EXPECT_EQ(lengthOf(mapped_), 150);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(CutSequence, CutTrimsTheTailBeforeAndTheHeadBehind) {
    const ObjectID transition = cut(20, 8);
    place({song_.clip(100), transition, song_.clip(50)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 88, 0}, Placed{88, 42, 8}));
    EXPECT_EQ(lengthOf(mapped_), 130);
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(cutLine(0, transition)));
}

TEST_F(CutSequence, HeadTrimAddsToTheSourceStart) {
    place({song_.clip(100), cut(20, 8), song_.clip(50, 100)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 88, 0}, Placed{88, 42, 108}));
}

TEST_F(CutSequence, CutAtTheStartTouchesOnlyWhatFollows) {
    const ObjectID transition = cut(20, 8);
    place({transition, song_.clip(50)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 42, 8}));
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(cutLine(0, transition)));
}

TEST_F(CutSequence, CutAtTheEndTouchesOnlyWhatPrecedes) {
    const ObjectID transition = cut(20, 8);
    place({song_.clip(50), transition});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 38, 0}));
    EXPECT_EQ(lengthOf(mapped_), 38);
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(cutLine(0, transition)));
}

TEST_F(CutSequence, CutsOnBothSidesTrimBothEnds) {
    const ObjectID before = cut(20, 8);
    const ObjectID behind = cut(30, 10);
    place({song_.clip(100), before, song_.clip(50), behind, song_.clip(60)});
    EXPECT_THAT(placedIn(mapped_),
                ElementsAre(Placed{0, 88, 0}, Placed{88, 22, 8}, Placed{110, 50, 10}));
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(cutLine(0, before), cutLine(1, behind)));
}

TEST_F(CutSequence, OfTwoTransitionsInARowEachTouchesItsOwnNeighbour) {
    const ObjectID first = cut(20, 8);
    const ObjectID second = cut(30, 10);
    place({song_.clip(100), first, second, song_.clip(50)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 88, 0}, Placed{88, 40, 10}));
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(cutLine(0, first), cutLine(1, second)));
}

TEST_F(CutSequence, TransitionsAloneTakeNoTimeAndAreNotReported) {
    const ObjectID inner = omf_.sequence({cut(20, 8), cut(20, 8)});
    place({inner, song_.clip(50)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 50, 0}));
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(CutSequence, NegativeCutPointIsZero) {
    place({song_.clip(100), cut(20, -8), song_.clip(50)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 80, 0}, Placed{80, 50, 0}));
}

TEST_F(CutSequence, NegativeLengthIsZero) {
    place({song_.clip(100), cut(-20, 8), song_.clip(50)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 0}, Placed{100, 42, 8}));
}

TEST_F(CutSequence, CutPointBeyondTheTransitionTrimsNoTail) {
    place({song_.clip(100), cut(20, 30), song_.clip(50)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 0}, Placed{100, 20, 30}));
}

TEST_F(CutSequence, MissingCutPointIsZero) {
    place({song_.clip(100), omf_.transition({.length = 20}).without("OMFI:TRAN:CutPoint"),
           song_.clip(50)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 80, 0}, Placed{80, 50, 0}));
}

TEST_F(CutSequence, TrimsBeyondAComponentLeaveNothing) {
    place({song_.clip(5), cut(20, 8), song_.clip(5), cut(20, 8), song_.clip(50)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 0, 0}, Placed{0, 0, 8}, Placed{0, 42, 8}));
    EXPECT_EQ(lengthOf(mapped_), 42);
}

TEST_F(CutSequence, HugeTrimsDoNotWrap) {
    const ObjectID before = cut(0, 0).int64("OMFI:CPNT:Length", INT64_MAX);
    const ObjectID behind = cut(0, INT64_MAX).int64("OMFI:CPNT:Length", INT64_MAX);
    place({song_.clip(10), before, song_.clip(10), behind, song_.clip(10)});
    const AAFTimeline& timeline = mapped_.timeline;
    ASSERT_EQ(timeline.events.size(), 3U);
    EXPECT_EQ(timeline.events[0].duration, AAFRational::zero());
    EXPECT_EQ(timeline.events[1].duration, AAFRational(1, 10));
    EXPECT_EQ(timeline.events[2].duration, AAFRational::zero());
}

TEST_F(CutSequence, FillerIsTrimmedToo) {
    const ObjectID transition = cut(20, 8);
    place({omf_.filler(100), transition, song_.clip(50), cut(20, 8), omf_.filler(30)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{88, 30, 8}));
    EXPECT_EQ(lengthOf(mapped_), 140);
}

TEST_F(CutSequence, TransitionSharedByTwoPlacesOfASequenceIsReportedOnce) {
    const ObjectID transition = cut(20, 8);
    place({song_.clip(100), transition, song_.clip(50), transition, song_.clip(50)});
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(cutLine(0, transition)));
}

TEST_F(CutSequence, SequenceUsedByTwoSlotsReportsItsCutForEach) {
    const ObjectID transition = cut(20, 8);
    const ObjectID sequence = omf_.sequence({song_.clip(100), transition, song_.clip(50)});
    song_.addSlot(sequence);
    song_.addSlot(sequence);
    const std::string below = step("SEQU", sequence) + step("TRAN", transition);
    EXPECT_THAT(recordsOf(song_.map()),
                ElementsAre(unsupportedLine(0, cutText, song_.path(0) + below),
                            unsupportedLine(1, cutText, song_.path(1) + below)));
}

TEST_F(CutSequence, NestedSegmentIsNotTrimmedButReported) {
    const ObjectID before = cut(20, 8);
    const ObjectID behind = cut(20, 20);
    place({song_.clip(100), before, omf_.selector(song_.clip(50, 3)), behind, song_.clip(30)});
    EXPECT_THAT(placedIn(mapped_),
                ElementsAre(Placed{0, 88, 0}, Placed{88, 50, 3}, Placed{138, 10, 20}));
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(cutLine(0, before), cutLine(1, behind), trimLine(2, 2)));
}

TEST_F(CutSequence, NestedSegmentWithATailTrimOnlyIsReported) {
    const ObjectID behind = cut(20, 8);
    place({omf_.selector(song_.clip(50)), behind, song_.clip(30)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 50, 0}, Placed{50, 22, 8}));
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(cutLine(0, behind), trimLine(1, 0)));
}

TEST_F(CutSequence, NestedSegmentBesideACutWithoutTrimIsNotReported) {
    const ObjectID before = cut(20, 0);
    const ObjectID behind = cut(20, 20);
    place({song_.clip(100), before, omf_.selector(song_.clip(50)), behind, song_.clip(30)});
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(cutLine(0, before), cutLine(1, behind)));
}

TEST_F(CutSequence, ClipsOwnFadesStayBesideACut) {
    place({song_.clip(100, std::nullopt, FadeSpec{10}), cut(20, 8),
           song_.clip(50, FadeSpec{5}, std::nullopt)});
    ASSERT_EQ(mapped_.timeline.events.size(), 2U);
    EXPECT_EQ(described(mapped_.timeline.events[0].fadeOut), "fadeOut 10 linear");
    EXPECT_EQ(described(mapped_.timeline.events[1].fadeIn), "fadeIn 5 linear");
}

}  // namespace
}  // namespace trellant::testing
