// SPDX-License-Identifier: Apache-2.0
// Scope references: from where they count, where they lead, where they end.
#include "song.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::string_view outside = "ScopeReference points above the outermost scope";

std::string noSlot(std::int64_t index) {
    return "ScopeReference target slot " + std::to_string(index) + " does not exist";
}

TEST(ScopeReference, RelativeSlotCountsBackFromTheSlotBeingWalked) {
    Song song;
    song.addSlot(song.clip(10, 1));
    song.addSlot(song.clip(20, 2));
    song.addSlot(song.omf.scopeReference(20, 0, 1));
    const Mapped mapped = song.map();
    EXPECT_THAT(placedIn(mapped),
                ElementsAre(Placed{0, 10, 1}, Placed{0, 20, 2}, Placed{0, 20, 2}));
    EXPECT_EQ(mapped.timeline.events[2].trackID, mapped.timeline.tracks[2].id);
    EXPECT_THAT(recordsOf(mapped), IsEmpty());
}

TEST(ScopeReference, NegativeRelativeSlotCountsForward) {
    Song song;
    song.addSlot(song.omf.scopeReference(20, 0, -1));
    song.addSlot(song.clip(20, 2));
    EXPECT_THAT(placedIn(song.map()), ElementsAre(Placed{0, 20, 2}, Placed{0, 20, 2}));
}

TEST(ScopeReference, LastsAsLongAsItsTargetAndStandsAtItsOwnPlace) {
    Song song;
    song.addSlot(song.clip(30, 2));
    song.addSlot(song.omf.sequence(
        {song.omf.filler(100), song.omf.scopeReference(77, 0, 1), song.clip(10)}));
    EXPECT_THAT(placedIn(song.map()),
                ElementsAre(Placed{0, 30, 2}, Placed{100, 30, 2}, Placed{130, 10, 0}));
}

TEST(ScopeReference, ScopeZeroIsTheInnermost) {
    Song song;
    song.addSlot(song.omf.nestedScope({song.clip(10, 1), song.omf.scopeReference(10, 0, 1)}));
    EXPECT_THAT(placedIn(song.map()), ElementsAre(Placed{0, 10, 1}));
}

TEST(ScopeReference, ScopeOneIsTheEnclosing) {
    Song song;
    song.addSlot(song.clip(10, 1));
    song.addSlot(song.omf.nestedScope({song.clip(10, 7), song.omf.scopeReference(10, 1, 1)}));
    EXPECT_THAT(placedIn(song.map()), ElementsAre(Placed{0, 10, 1}, Placed{0, 10, 1}));
}

TEST(ScopeReference, TargetCountsFromItsOwnSlot) {
    // Slot 2 refers out of its scope to slot 1, which refers to the slot before itself.
    Song song;
    song.addSlot(song.clip(10, 1));
    song.addSlot(song.omf.scopeReference(10, 0, 1));
    song.addSlot(song.omf.nestedScope({song.clip(10, 7), song.omf.scopeReference(10, 1, 1)}));
    EXPECT_THAT(placedIn(song.map()),
                ElementsAre(Placed{0, 10, 1}, Placed{0, 10, 1}, Placed{0, 10, 1}));
}

TEST(ScopeReference, TargetSeesOnlyTheScopesAroundItself) {
    // Slot 0 refers above the outermost scope, also when it is reached from within another scope.
    Song song;
    const ObjectID beyond = song.omf.scopeReference(10, 1, 0);
    song.addSlot(beyond);
    const ObjectID outward = song.omf.scopeReference(20, 1, 1);
    const ObjectID scope = song.omf.nestedScope({song.clip(10, 7), outward});
    song.addSlot(scope);
    song.addSlot(song.clip(5));
    const Mapped mapped = song.map();
    EXPECT_THAT(recordsOf(mapped),
                ElementsAre(unsupportedLine(0, outside, song.path(0) + step("SREF", beyond)),
                            unsupportedLine(1, outside,
                                            song.path(1) + step("NEST", scope) +
                                                step("SREF", outward) + step("SREF", beyond))));
    EXPECT_EQ(lengthOf(mapped), 10);
}

TEST(ScopeReference, FollowsThroughSelectorsSequencesAndEffects) {
    Song song;
    song.addSlot(song.clip(10, 1));
    const ObjectID reference = song.omf.scopeReference(10, 0, 1);
    const ObjectID louder = song.omf.gain(reference, song.omf.constantValue({2}));
    song.addSlot(song.omf.selector(song.omf.sequence({louder})));
    const Mapped mapped = song.map();
    EXPECT_THAT(placedIn(mapped), ElementsAre(Placed{0, 10, 1}, Placed{0, 10, 1}));
    EXPECT_EQ(mapped.timeline.events[1].fixedClipGain, 2.0);
}

TEST(ScopeReference, MissingScopeAndSlotAreZero) {
    // Zero and zero refer to the slot itself: walked until the depth limit.
    Song song;
    song.addSlot(song.clip(10));
    const ObjectID reference = song.omf.segment("SREF", 10);
    song.addSlot(reference);
    const Mapped mapped = song.map();
    std::string path = song.path(1);
    for (int level = 0; level < 48; ++level) {
        path += step("SREF", reference);
    }
    EXPECT_THAT(recordsOf(mapped),
                ElementsAre(unsupportedLine(0, "composition nesting exceeds depth limit", path)));
}

class BrokenScopeReference : public ::testing::Test {
  protected:
    /// The reference stands between two clips in slot 1 of two.
    void expectReported(ObjectID reference, std::string_view text) {
        song_.addSlot(song_.clip(10));
        const ObjectID sequence = song_.omf.sequence({song_.clip(10), reference, song_.clip(10)});
        song_.addSlot(sequence);
        const Mapped mapped = song_.map();
        EXPECT_THAT(recordsOf(mapped),
                    ElementsAre(unsupportedLine(0, text,
                                                song_.path(1) + step("SEQU", sequence) +
                                                    "/component[1]" + step("SREF", reference))));
        EXPECT_THAT(placedIn(mapped),
                    ElementsAre(Placed{0, 10, 0}, Placed{0, 10, 0}, Placed{40, 10, 0}));
    }

    Song song_;
};

TEST_F(BrokenScopeReference, AboveTheOutermostScopeIsReported) {
    expectReported(song_.omf.scopeReference(30, 1, 0), outside);
}

TEST_F(BrokenScopeReference, FarAboveTheOutermostScopeIsReported) {
    expectReported(song_.omf.scopeReference(30, INT32_MAX, 0), outside);
}

TEST_F(BrokenScopeReference, BeyondTheInnermostScopeIsReportedAlike) {
    expectReported(song_.omf.scopeReference(30, -1, 0), outside);
}

TEST_F(BrokenScopeReference, SmallestScopeIsReportedAlike) {
    expectReported(song_.omf.scopeReference(30, INT32_MIN, 0), outside);
}

TEST_F(BrokenScopeReference, SlotBeforeTheFirstDoesNotExist) {
    expectReported(song_.omf.scopeReference(30, 0, 2), noSlot(-1));
}

TEST_F(BrokenScopeReference, SlotBehindTheLastDoesNotExist) {
    expectReported(song_.omf.scopeReference(30, 0, -1), noSlot(2));
}

TEST_F(BrokenScopeReference, ExtremeSlotsDoNotExist) {
    expectReported(song_.omf.scopeReference(30, 0, INT32_MAX), noSlot(-2'147'483'646));
    Song other;
    const ObjectID reference = other.omf.scopeReference(30, 0, INT32_MIN);
    other.addSlot(reference);
    other.addSlot(other.clip(10));
    EXPECT_THAT(recordsOf(other.map()),
                ElementsAre(unsupportedLine(0, noSlot(2'147'483'648),
                                            other.path() + step("SREF", reference))));
}

TEST_F(BrokenScopeReference, SlotWithoutASegmentDoesNotExist) {
    song_.addSlot(SlotSpec{});
    const ObjectID reference = song_.omf.scopeReference(30, 0, 1);
    song_.addSlot(reference);
    song_.addSlot(song_.clip(10));
    EXPECT_THAT(
        recordsOf(song_.map()),
        ElementsAre(unsupportedLine(0, noSlot(0), song_.path(1) + step("SREF", reference))));
}

}  // namespace
}  // namespace trellant::testing
