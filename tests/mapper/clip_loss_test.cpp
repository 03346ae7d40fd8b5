// SPDX-License-Identifier: Apache-2.0
// What is said of a dropped clip: the reason, and what goes before the record of the loss.
#include "clip_loss.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr OMFObject clip{7};
constexpr OMFUID mob{1, 2, 3};

/// What the notes hold after a clip was dropped, with places.
struct Dropped {
    std::vector<std::string> diagnostics{};
    /// "ID: TEXT at PATH".
    std::vector<std::string> records{};
    std::vector<LossKind> kinds{};
};

Dropped dropped(const ClipLoss& loss) {
    MappingNotes notes(true);
    recordDropped(loss, ObjectPath("SCLP", clip), notes);
    Dropped result{.diagnostics = notes.diagnostics()};
    for (const AAFUnsupportedFeature& record : notes.takeUnsupported()) {
        result.records.push_back(record.id + ": " + record.description + " at " +
                                 record.objectPath.value_or(""));
    }
    for (const LossPlace& place : notes.takePlaces()) {
        result.kinds.push_back(place.kind);
    }
    return result;
}

TEST(ClipLoss, WithoutASourceSaysSo) {
    const Dropped result = dropped(ClipWithoutSource{});
    EXPECT_THAT(result.diagnostics, IsEmpty());
    EXPECT_THAT(
        result.records,
        ElementsAre("omf-loss-0: audio clip dropped: the Source Clip carries no Source ID at "
                    "SCLP[7]"));
    EXPECT_THAT(result.kinds, ElementsAre(LossKind::clipWithoutSource));
}

TEST(ClipLoss, MissingSourceIsDiagnosedAtTheClipThatNamesIt) {
    const Dropped result = dropped(ClipSourceMissing{OMFObject{9}, mob});
    EXPECT_THAT(result.diagnostics,
                ElementsAre("Unresolved Source Mob 00000001-00000002-00000003 for SCLP 9"));
    EXPECT_THAT(result.records,
                ElementsAre("omf-loss-0: audio clip dropped: the referenced Source Mob "
                            "00000001-00000002-00000003 is not contained in the file at SCLP[7]"));
    EXPECT_THAT(result.kinds, ElementsAre(LossKind::clipSourceMissing));
}

TEST(ClipLoss, MissingTrackIsWordedApartInDiagnosticAndReason) {
    const Dropped result = dropped(ClipSourceTrackMissing{mob, 4});
    EXPECT_THAT(result.diagnostics,
                ElementsAre("Source Mob 00000001-00000002-00000003 has no TrackID 4"));
    EXPECT_THAT(result.records,
                ElementsAre("omf-loss-0: audio clip dropped: Source Mob "
                            "00000001-00000002-00000003 has no track 4 at SCLP[7]"));
    EXPECT_THAT(result.kinds, ElementsAre(LossKind::clipSourceTrackMissing));
}

TEST(ClipLoss, ReasonIsTheSameInEnglish) {
    const ClipSourceTrackMissing told{mob, 4};
    EXPECT_TRUE(verlustGrund(told).has_value());
    EXPECT_EQ(lossReason(told), verlustGrund(told));
    EXPECT_EQ(lossReason(ClipSourceCycle{OMFObject{9}}),
              verlustGrund(ClipSourceCycle{OMFObject{9}}));
}

TEST(ClipLoss, CycleHasARecordOfItsOwnInsteadOfAReason) {
    EXPECT_EQ(verlustGrund(ClipSourceCycle{OMFObject{9}}), std::nullopt);
    const Dropped result = dropped(ClipSourceCycle{OMFObject{9}});
    EXPECT_THAT(result.diagnostics, IsEmpty());
    EXPECT_THAT(
        result.records,
        ElementsAre("omf-unsupported-0: source reference cycle/depth limit at SCLP[9]",
                    "omf-loss-1: audio clip dropped: the source could not be resolved at SCLP[7]"));
    EXPECT_THAT(result.kinds, ElementsAre(LossKind::sourceCycle, LossKind::clipUnresolved));
}

TEST(ClipLoss, DeadEndNamesTheClassWhereTheWayEnds) {
    EXPECT_EQ(verlustGrund(ClipSourceDeadEnd{clip, mob, 4, "FILL"}), std::nullopt);
    const Dropped result = dropped(ClipSourceDeadEnd{clip, mob, 4, "FILL"});
    EXPECT_THAT(
        result.records,
        ElementsAre("omf-unsupported-0: Source Mob 00000001-00000002-00000003 TrackID 4 resolves "
                    "through FILL, not a direct Source Clip at SCLP[7]",
                    "omf-loss-1: audio clip dropped: the source could not be resolved at SCLP[7]"));
    EXPECT_THAT(result.kinds, ElementsAre(LossKind::sourceDeadEnd, LossKind::clipUnresolved));
}

TEST(ClipLoss, DeadEndWithoutASegmentSaysSo) {
    EXPECT_EQ(dropped(ClipSourceDeadEnd{clip, mob, 4}).records.at(0),
              "omf-unsupported-0: Source Mob 00000001-00000002-00000003 TrackID 4 resolves through "
              "no segment, not a direct Source Clip at SCLP[7]");
}

TEST(ClipLoss, UndescribedMediaSayWhoLacksTheDescriptor) {
    const Dropped result = dropped(ClipMediaUndescribed{});
    EXPECT_THAT(result.diagnostics, IsEmpty());
    EXPECT_THAT(result.records, ElementsAre("omf-loss-0: audio clip dropped: the Source Mob "
                                            "carries no media descriptor at SCLP[7]"));
    EXPECT_THAT(result.kinds, ElementsAre(LossKind::clipMediaUndescribed));
}

}  // namespace
}  // namespace trellant::testing
