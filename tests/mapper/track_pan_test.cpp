// SPDX-License-Identifier: Apache-2.0
// A track's pan and channel role, from its clips' pans and its name.
#include "track_pan.h"

#include "song.h"

#include <gmock/gmock.h>

namespace trellant::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::string_view differing =
    "per-clip pan values differ on one track and cannot be expressed as a track pan";

class TrackPanFromClips : public ::testing::Test {
  protected:
    /// A track of clips with these pans; a clip without one for an absent pan.
    Mapped mapped(const std::vector<std::optional<Ratio>>& pans) {
        std::vector<ObjectID> components;
        for (const std::optional<Ratio>& pan : pans) {
            const ObjectID clip = song_.clip(100);
            components.push_back(pan ? song_.omf.pan(clip, song_.omf.constantValue(*pan)).id()
                                     : clip);
        }
        song_.addSlot(song_.omf.sequence(components), "Dialog_R");
        return song_.map();
    }
    static std::optional<double> panOf(const Mapped& mapped) {
        return mapped.timeline.tracks.at(0).fixedPan;
    }
    static AAFChannelRole roleOf(const Mapped& mapped) {
        return mapped.timeline.events.at(0).channelRole;
    }
    void expectDiffering(const Mapped& mapped) {
        EXPECT_THAT(recordsOf(mapped), ElementsAre(unsupportedLine(0, differing, song_.path())));
        EXPECT_EQ(panOf(mapped), std::nullopt);
        EXPECT_EQ(roleOf(mapped), AAFChannelRole::right);
    }

    Song song_;
};

TEST_F(TrackPanFromClips, NoneLeavesTheRoleToTheName) {
    const Mapped result = mapped({std::nullopt, std::nullopt});
    EXPECT_EQ(panOf(result), std::nullopt);
    EXPECT_EQ(roleOf(result), AAFChannelRole::right);
    EXPECT_THAT(recordsOf(result), IsEmpty());
}

TEST_F(TrackPanFromClips, PansWithinAMillionthAreOne) {
    const Mapped result = mapped({Ratio{1, 2}, Ratio{5'000'001, 10'000'000}});
    EXPECT_EQ(panOf(result), 0.5);
    EXPECT_THAT(recordsOf(result), IsEmpty());
}

TEST_F(TrackPanFromClips, DifferentPansAreReported) {
    expectDiffering(mapped({Ratio{1, 2}, Ratio{3, 5}}));
}

TEST_F(TrackPanFromClips, PansAMillionthApartDiffer) {
    expectDiffering(mapped({Ratio{0}, Ratio{1, 1'000'000}}));
}

TEST_F(TrackPanFromClips, AnyTwoPansMayDiffer) {
    // Each within a millionth of the first, but not of each other.
    expectDiffering(
        mapped({Ratio{1, 2}, Ratio{5'000'007, 10'000'000}, Ratio{4'999'994, 10'000'000}}));
}

TEST_F(TrackPanFromClips, ClipWithoutAPanAmongOthersDiffers) {
    expectDiffering(mapped({Ratio{1, 2}, std::nullopt}));
}

TEST_F(TrackPanFromClips, ClipsWithoutAPanBeforeOthersDiffer) {
    expectDiffering(mapped({std::nullopt, Ratio{1, 2}}));
}

TEST_F(TrackPanFromClips, FarLeftIsTheLeftChannelWhateverTheName) {
    const Mapped result = mapped({Ratio{0, 1}});
    EXPECT_EQ(panOf(result), 0.0);
    EXPECT_EQ(roleOf(result), AAFChannelRole::left);
}

TEST_F(TrackPanFromClips, FarRightIsTheRightChannel) {
    Song song;
    song.addSlot(song.omf.pan(song.clip(100), song.omf.constantValue({1, 1})), "Dialog_L");
    const Mapped result = song.map();
    EXPECT_EQ(panOf(result), 1.0);
    EXPECT_EQ(roleOf(result), AAFChannelRole::right);
}

TEST_F(TrackPanFromClips, AlmostFarLeftIsNot) {
    const Mapped result = mapped({Ratio{1, 10'000'000}});
    EXPECT_EQ(panOf(result), 1e-7);
    EXPECT_EQ(roleOf(result), AAFChannelRole::right);
}

TEST_F(TrackPanFromClips, WithinABillionthIsFarLeft) {
    const Mapped result = mapped({Ratio{1, 2'000'000'000}});
    EXPECT_EQ(roleOf(result), AAFChannelRole::left);
}

TEST(TrackPanAtTheRight, WithinABillionthOfOneIsFarRight) {
    for (const std::int32_t numerator : {1'999'999'999, 2'000'000'001}) {
        Song song;
        song.addSlot(
            song.omf.pan(song.clip(100), song.omf.constantValue({numerator, 2'000'000'000})),
            "Dialog_L");
        EXPECT_EQ(song.map().timeline.events.at(0).channelRole, AAFChannelRole::right) << numerator;
    }
}

TEST(TrackPanAtTheRight, JustBelowOrAboveOneIsLeftToTheName) {
    for (const std::int32_t numerator : {9'999'999, 10'000'001}) {
        Song song;
        song.addSlot(song.omf.pan(song.clip(100), song.omf.constantValue({numerator, 10'000'000})),
                     "Dialog_L");
        const Mapped mapped = song.map();
        EXPECT_EQ(mapped.timeline.tracks.at(0).fixedPan, numerator / 10'000'000.0);
        EXPECT_EQ(mapped.timeline.events.at(0).channelRole, AAFChannelRole::left) << numerator;
    }
}

TEST_F(TrackPanFromClips, RecordComesBeforeTheLossesOfTheClips) {
    const ObjectID lost = song_.omf.clip({.length = 100});
    song_.addSlot(song_.omf.sequence(
        {lost, song_.omf.pan(song_.clip(100), song_.omf.constantValue({1, 2}))}));
    EXPECT_THAT(recordsOf(song_.map()),
                ElementsAre(unsupportedLine(0, differing, song_.path()),
                            lossLine(1, "audio clip dropped: the Source Clip carries no Source ID",
                                     song_.path() + step("SCLP", lost))));
}

TEST(TrackRole, EndingOfTheNameTellsLeftAndRight) {
    for (const std::string separator : {"_", "-", ".", " "}) {
        for (const std::string letter : {"l", "L"}) {
            EXPECT_EQ(roleFromName("Dialog" + separator + letter), AAFChannelRole::left);
        }
        for (const std::string letter : {"r", "R"}) {
            EXPECT_EQ(roleFromName("Dialog" + separator + letter), AAFChannelRole::right);
        }
    }
}

TEST(TrackRole, AnyOtherEndingIsMono) {
    for (const std::string name :
         {"DialogL", "Dialog_LL", "Dialog_L ", "L", "R", "Dialog:L", "Dialog_C", "l_Dialog"}) {
        EXPECT_EQ(roleFromName(name), AAFChannelRole::mono) << name;
    }
    EXPECT_EQ(roleFromName(std::nullopt), AAFChannelRole::mono);
}

TEST(TrackRole, SeparatorAndLetterAloneAreEnough) {
    EXPECT_EQ(roleFromName("_l"), AAFChannelRole::left);
    EXPECT_EQ(roleFromName(" R"), AAFChannelRole::right);
}

TEST(TrackRole, OfTheNamedTrackReachesItsEvents) {
    const std::vector<std::pair<std::string, AAFChannelRole>> roles{
        {"Dialog_L", AAFChannelRole::left},
        {"Dialog L", AAFChannelRole::left},
        {"DialogL", AAFChannelRole::mono}};
    for (const auto& [name, role] : roles) {
        Song song;
        song.addSlot(song.clip(100), name);
        EXPECT_EQ(song.map().timeline.events.at(0).channelRole, role) << name;
    }
}

}  // namespace
}  // namespace trellant::testing
