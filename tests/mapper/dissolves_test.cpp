// SPDX-License-Identifier: Apache-2.0
// Transitions that are plain audio dissolves: overlap and fades, and what makes one.
#include "sequence_fixture.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::string_view fadeInText =
    "SourceClip fade-in combined with an OMF dissolve cannot be losslessly collapsed to one fade";
constexpr std::string_view fadeOutText =
    "SourceClip fade-out combined with an OMF dissolve cannot be losslessly collapsed to one fade";

class DissolveSequence : public SequenceTest {
  protected:
    const AAFClipEvent& event(std::size_t index) { return mapped_.timeline.events.at(index); }
};

TEST_F(DissolveSequence, NeighboursOverlapAndFade) {
    place({song_.clip(100), omf_.dissolve(20), song_.clip(50)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 0}, Placed{80, 50, 0}));
    EXPECT_EQ(described(event(0).fadeIn), "none");
    EXPECT_EQ(described(event(0).fadeOut), "fadeOut 20 linear");
    EXPECT_EQ(described(event(1).fadeIn), "fadeIn 20 linear");
    EXPECT_EQ(described(event(1).fadeOut), "none");
    EXPECT_EQ(lengthOf(mapped_), 130);
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(DissolveSequence, DissolvesOnBothSidesFadeBothEnds) {
    place({song_.clip(100), omf_.dissolve(20), song_.clip(50), omf_.dissolve(10), song_.clip(40)});
    EXPECT_THAT(placedIn(mapped_),
                ElementsAre(Placed{0, 100, 0}, Placed{80, 50, 0}, Placed{120, 40, 0}));
    EXPECT_EQ(described(event(1).fadeIn), "fadeIn 20 linear");
    EXPECT_EQ(described(event(1).fadeOut), "fadeOut 10 linear");
    EXPECT_EQ(lengthOf(mapped_), 160);
}

TEST_F(DissolveSequence, DissolveAndCutMeetAtOneClip) {
    const ObjectID cut = omf_.transition({.length = 20, .cutPoint = 8});
    place({song_.clip(100), omf_.dissolve(20), song_.clip(50), cut, song_.clip(40)});
    EXPECT_THAT(placedIn(mapped_),
                ElementsAre(Placed{0, 100, 0}, Placed{80, 38, 0}, Placed{118, 32, 8}));
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(
                    0, cutText, song_.path() + step("SEQU", sequence_) + step("TRAN", cut))));
}

TEST_F(DissolveSequence, DissolveAtTheEndFadesWhatPrecedes) {
    place({song_.clip(100), omf_.dissolve(20)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 0}));
    EXPECT_EQ(described(event(0).fadeOut), "fadeOut 20 linear");
    EXPECT_EQ(lengthOf(mapped_), 100);
}

TEST_F(DissolveSequence, DissolveAtTheStartOfAnInnerSequenceMovesIntoWhatPrecedes) {
    place({omf_.filler(100), omf_.sequence({omf_.dissolve(20), song_.clip(50)}), omf_.filler(7)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{80, 50, 0}));
    EXPECT_EQ(described(event(0).fadeIn), "fadeIn 20 linear");
    EXPECT_EQ(lengthOf(mapped_), 137);
}

TEST_F(DissolveSequence, FillerMovesToo) {
    place({song_.clip(100), omf_.dissolve(20), omf_.filler(50), omf_.dissolve(10), song_.clip(40)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 0}, Placed{120, 40, 0}));
    EXPECT_EQ(described(event(0).fadeOut), "fadeOut 20 linear");
    EXPECT_EQ(described(event(1).fadeIn), "fadeIn 10 linear");
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(DissolveSequence, OwnFadeInStaysAndIsReported) {
    place({song_.clip(100), omf_.dissolve(20), song_.clip(50, FadeSpec{7, 2}, std::nullopt)});
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 0}, Placed{80, 50, 0}));
    EXPECT_EQ(described(event(1).fadeIn), "fadeIn 7 power");
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(unsupportedLine(0, fadeInText, componentPath(2))));
}

TEST_F(DissolveSequence, OwnFadeOutStaysAndIsReported) {
    place({song_.clip(100, std::nullopt, FadeSpec{7, 2}), omf_.dissolve(20), song_.clip(50)});
    EXPECT_EQ(described(event(0).fadeOut), "fadeOut 7 power");
    EXPECT_EQ(described(event(1).fadeIn), "fadeIn 20 linear");
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(unsupportedLine(0, fadeOutText, componentPath(0))));
}

TEST_F(DissolveSequence, OwnFadeOfUnknownTypeStaysToo) {
    const ObjectID clip = song_.clip(50, FadeSpec{7, 9}, std::nullopt);
    place({song_.clip(100), omf_.dissolve(20), clip});
    EXPECT_EQ(described(event(1).fadeIn), "fadeIn 7 unsupported(OMF Fade Type 9)");
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "OMF Fade Type 9",
                                            "SCLP[" + std::to_string(clip) + "]/FadeIn"),
                            unsupportedLine(1, fadeInText, componentPath(2))));
}

TEST_F(DissolveSequence, OwnFadesAtBothEndsAreReportedInOrder) {
    place({song_.clip(100), omf_.dissolve(20), song_.clip(50, FadeSpec{5}, FadeSpec{6}),
           omf_.dissolve(10), song_.clip(50)});
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(unsupportedLine(0, fadeInText, componentPath(2)),
                                                unsupportedLine(1, fadeOutText, componentPath(2))));
}

}  // namespace
}  // namespace trellant::testing
