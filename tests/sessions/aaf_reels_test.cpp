// SPDX-License-Identifier: Apache-2.0
// The tapes that files come from.
#include "sample_sessions.h"
#include "written_session.h"

namespace trellant::sessions {
namespace {

using exchange::PlannedMedia;
using exchange::PlannedReel;
using exchange::ReelTimecode;

PlannedMedia fromReel(const std::string& name, const PlannedReel& reel) {
    PlannedMedia media = medium(name);
    media.frames = 1'000;
    media.reel = reel;
    return media;
}

Session sessionOfMedia(std::vector<PlannedMedia> media) {
    std::vector<exchange::PlannedClip> clips;
    for (std::size_t i = 0; i < media.size(); ++i) {
        clips.push_back(clip(static_cast<exchange::Samples>(i) * 480, 480));
        clips.back().media = i;
    }
    return sessionOf(planOf({track("A", std::move(clips))}, std::move(media)));
}

const PlannedReel tape{.id = "tape 7",
                       .name = "TAPE 7",
                       .start = AAFRational(3, 2),
                       .timecode = ReelTimecode{90'000, 25, false}};

TEST(AafReels, AFileComesFromItsPlaceOnTheTape) {
    const WrittenObjects written(sessionOfMedia({fromReel("Anna", tape)}));
    const std::string file = written.pathOf("SourceMob", "Anna") + "/Slots/0/Segment";
    // 3/2 s at 48,000 samples in a second.
    EXPECT_EQ(written.reader().valueOf(file, "StartTime"), "72000");
    EXPECT_EQ(written.reader().valueOf(file, "SourceMobSlotID"), "1");
    EXPECT_EQ(written.reader().valueOf(file, "SourceID"),
              written.reader().valueOf(written.pathOf("SourceMob", "TAPE 7"), "MobID"));
}

TEST(AafReels, ATapeHasSoundAndLabels) {
    const WrittenObjects written(sessionOfMedia({fromReel("Anna", tape)}));
    const std::string mob = written.pathOf("SourceMob", "TAPE 7");
    EXPECT_EQ(written.reader().textOf(mob + "/EssenceDescription"),
              "TapeDescriptor\n  VideoSignal VideoSignalNull\n");
    EXPECT_EQ(written.reader().valueOf(mob, "Slots"), "2 objects");
    // A day of labels at 25 frames in a second.
    EXPECT_EQ(written.reader().textOf(mob + "/Slots/1"),
              "TimelineMobSlot\n"
              "  EditRate 25/1\n"
              "  Origin 0\n"
              "  PhysicalTrackNumber 1\n"
              "  Segment -> Timecode\n"
              "    DataDefinition DataDef_Timecode\n"
              "    Drop False\n"
              "    FPS 25\n"
              "    Length 2160000\n"
              "    Start 90000\n"
              "  SlotID 2\n");
}

TEST(AafReels, DropFrameLabelsCountAThousandthLess) {
    PlannedReel reel = tape;
    reel.timecode = ReelTimecode{107'892, 30, true};
    const WrittenObjects written(sessionOfMedia({fromReel("Anna", reel)}));
    const std::string slot = written.pathOf("SourceMob", "TAPE 7") + "/Slots/1";
    EXPECT_EQ(written.reader().valueOf(slot, "EditRate"), "30000/1001");
    EXPECT_EQ(written.reader().valueOf(slot + "/Segment", "Drop"), "True");
}

TEST(AafReels, WithoutLabelsATapeHasSoundAlone) {
    PlannedReel reel = tape;
    reel.timecode.reset();
    const WrittenObjects written(sessionOfMedia({fromReel("Anna", reel)}));
    EXPECT_EQ(written.reader().valueOf(written.pathOf("SourceMob", "TAPE 7"), "Slots"),
              "1 objects");
}

TEST(AafReels, FilesOfOneTapeShareItsMob) {
    PlannedReel later = tape;
    later.start = AAFRational(10);
    PlannedReel other = tape;
    other.id = "tape 8";
    // Three files and two tapes of one name.
    const WrittenObjects written(
        sessionOfMedia({fromReel("Anna", tape), fromReel("Ben", later), fromReel("Carl", other)}));
    const std::string ben = written.pathOf("SourceMob", "Ben") + "/Slots/0/Segment";
    const std::string anna = written.pathOf("SourceMob", "Anna") + "/Slots/0/Segment";
    const std::string carl = written.pathOf("SourceMob", "Carl") + "/Slots/0/Segment";
    const testing::AafReader& reader = written.reader();
    EXPECT_EQ(reader.valueOf(ben, "SourceID"), reader.valueOf(anna, "SourceID"));
    EXPECT_NE(reader.valueOf(carl, "SourceID"), reader.valueOf(anna, "SourceID"));
    EXPECT_EQ(reader.valueOf(ben, "StartTime"), "480000");
}

TEST(AafReels, PlacesBeforeTheTapesZeroAndBeyondAllCountingAreItsEnds) {
    PlannedReel before = tape;
    before.start = AAFRational(-5);
    before.id = "before";
    PlannedReel beyond = tape;
    beyond.start = AAFRational(INT64_MAX);
    const WrittenObjects written(
        sessionOfMedia({fromReel("Anna", before), fromReel("Ben", beyond)}));
    const testing::AafReader& reader = written.reader();
    EXPECT_EQ(reader.valueOf(written.pathOf("SourceMob", "Anna") + "/Slots/0/Segment", "StartTime"),
              "0");
    EXPECT_EQ(reader.valueOf(written.pathOf("SourceMob", "Ben") + "/Slots/0/Segment", "StartTime"),
              "9007199254740992");
}

}  // namespace
}  // namespace trellant::sessions
