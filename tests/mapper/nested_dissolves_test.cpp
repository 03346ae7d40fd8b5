// SPDX-License-Identifier: Apache-2.0
// Dissolves beside nested segments: which of the nested clips takes the fade.
#include "sequence_fixture.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::string_view intoText = "dissolve into nested segment cannot be losslessly collapsed";
constexpr std::string_view outOfText =
    "dissolve out of nested segment cannot be losslessly collapsed";

/// A clip of 100, a dissolve of 20, the nested segment, a dissolve of 10, a clip of 100.
class NestedDissolve : public ::testing::Test {
  protected:
    void place(ObjectID nested) {
        sequence_ = omf_.sequence(
            {song_.clip(100), omf_.dissolve(20), nested, omf_.dissolve(10), song_.clip(100)});
        song_.addSlot(sequence_);
        mapped_ = song_.map();
    }
    /// "IN / OUT" of every event.
    std::vector<std::string> fades() {
        std::vector<std::string> lines;
        for (const AAFClipEvent& event : mapped_.timeline.events) {
            lines.push_back(described(event.fadeIn) + " / " + described(event.fadeOut));
        }
        return lines;
    }
    std::string line(int number, std::string_view text) {
        return unsupportedLine(number, text,
                               song_.path() + step("SEQU", sequence_) + "/component[2]");
    }

    static constexpr const char* first_ = "none / fadeOut 20 linear";
    static constexpr const char* last_ = "fadeIn 10 linear / none";
    Song song_;
    OmfBuilder& omf_ = song_.omf;
    ObjectID sequence_ = 0;
    Mapped mapped_;
};

TEST_F(NestedDissolve, OneNestedClipTakesBothFades) {
    place(omf_.selector(song_.clip(50)));
    EXPECT_THAT(placedIn(mapped_),
                ElementsAre(Placed{0, 100, 0}, Placed{80, 50, 0}, Placed{120, 100, 0}));
    EXPECT_THAT(fades(), ElementsAre(first_, "fadeIn 20 linear / fadeOut 10 linear", last_));
    EXPECT_THAT(recordsOf(mapped_), IsEmpty());
}

TEST_F(NestedDissolve, FirstAndLastNestedClipTakeTheFades) {
    place(omf_.sequence({song_.clip(30), song_.clip(30), song_.clip(30)}));
    EXPECT_THAT(fades(), ElementsAre(first_, "fadeIn 20 linear / none", "none / none",
                                     "none / fadeOut 10 linear", last_));
}

TEST_F(NestedDissolve, EarliestStartTakesTheFadeInWhateverTheOrder) {
    // The inputs of an effect start together; the second clip of the first one comes later.
    const ObjectID late = omf_.sequence({omf_.filler(10), song_.clip(30, 1)});
    const ObjectID early = omf_.sequence({song_.clip(20, 2)});
    place(omf_.effect({.effectID = "omfi:effect:MonoAudioGain",
                       .length = 40,
                       .slots = {{-1, late}, {-1, early}}}));
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 0}, Placed{90, 30, 1},
                                               Placed{80, 20, 2}, Placed{110, 100, 0}));
    EXPECT_THAT(fades(),
                ElementsAre(first_, "none / fadeOut 10 linear", "fadeIn 20 linear / none", last_));
}

TEST_F(NestedDissolve, FirstOnesOnTiesTakeTheFades) {
    place(omf_.effect({.effectID = "omfi:effect:MonoAudioGain",
                       .length = 40,
                       .slots = {{-1, song_.clip(40, 1)}, {-1, song_.clip(40, 2)}}}));
    EXPECT_THAT(fades(),
                ElementsAre(first_, "fadeIn 20 linear / fadeOut 10 linear", "none / none", last_));
}

TEST_F(NestedDissolve, ClipThatEndsLatestTakesTheFadeOutEvenWhenItStartsFirst) {
    place(omf_.effect({.effectID = "omfi:effect:MonoAudioGain",
                       .length = 60,
                       .slots = {{-1, song_.clip(60, 1)},
                                 {-1, omf_.sequence({omf_.filler(20), song_.clip(30, 2)})}}}));
    EXPECT_THAT(fades(),
                ElementsAre(first_, "fadeIn 20 linear / fadeOut 10 linear", "none / none", last_));
}

TEST_F(NestedDissolve, NestedFadeInInTheWayIsReported) {
    place(omf_.selector(song_.clip(50, FadeSpec{5, 2}, std::nullopt)));
    EXPECT_THAT(fades(), ElementsAre(first_, "fadeIn 5 power / fadeOut 10 linear", last_));
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(line(0, intoText)));
}

TEST_F(NestedDissolve, NestedFadeOutInTheWayIsReported) {
    place(omf_.selector(song_.clip(50, std::nullopt, FadeSpec{5, 2})));
    EXPECT_THAT(fades(), ElementsAre(first_, "fadeIn 20 linear / fadeOut 5 power", last_));
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(line(0, outOfText)));
}

TEST_F(NestedDissolve, NestedSilenceIsReportedOnBothSides) {
    place(omf_.selector(omf_.filler(50)));
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 0}, Placed{120, 100, 0}));
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(line(0, intoText), line(1, outOfText)));
}

TEST_F(NestedDissolve, EmptyNestedListsKeepTheirTime) {
    place(omf_.segment("CVAL", 50));
    EXPECT_THAT(placedIn(mapped_), ElementsAre(Placed{0, 100, 0}, Placed{120, 100, 0}));
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(line(0, intoText), line(1, outOfText)));
}

TEST_F(NestedDissolve, RecordsOfTheNestedSegmentComeFirst) {
    const ObjectID scope = omf_.nestedScope({});
    place(scope);
    EXPECT_THAT(recordsOf(mapped_),
                ElementsAre(unsupportedLine(0, "NestedScope has no slots",
                                            song_.path() + step("SEQU", sequence_) +
                                                "/component[2]" + step("NEST", scope)),
                            line(1, intoText), line(2, outOfText)));
}

TEST_F(NestedDissolve, FadeFromAnInnerDissolveIsInTheWayToo) {
    place(omf_.sequence({omf_.dissolve(8), song_.clip(50)}));
    EXPECT_THAT(fades(), ElementsAre(first_, "fadeIn 8 linear / fadeOut 10 linear", last_));
    EXPECT_THAT(recordsOf(mapped_), ElementsAre(line(0, intoText)));
}

TEST_F(NestedDissolve, DissolveWithACutOnTheOtherSideReportsTheTrim) {
    const ObjectID cut = omf_.transition({.length = 20, .cutPoint = 8});
    const ObjectID sequence = omf_.sequence(
        {song_.clip(100), omf_.dissolve(20), omf_.selector(song_.clip(50)), cut, song_.clip(30)});
    song_.addSlot(sequence);
    const Mapped mapped = song_.map();
    EXPECT_THAT(placedIn(mapped),
                ElementsAre(Placed{0, 100, 0}, Placed{80, 50, 0}, Placed{130, 22, 8}));
    const std::string path = song_.path() + step("SEQU", sequence);
    EXPECT_THAT(
        recordsOf(mapped),
        ElementsAre(unsupportedLine(0, cutText, path + step("TRAN", cut)),
                    unsupportedLine(
                        1, "cut-point trim around nested segment requires effect-aware rendering",
                        path + "/component[2]")));
}

}  // namespace
}  // namespace trellant::testing
