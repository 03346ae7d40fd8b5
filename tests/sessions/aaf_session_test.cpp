// SPDX-License-Identifier: Apache-2.0
// What stands in the file of a session, object by object.
#include "sample_sessions.h"
#include "written_session.h"

#include <trellant/version.h>

namespace trellant::sessions {
namespace {

const std::string sound = "DataDefinition DataDef_Sound\n";

/// Two seconds on one track, the first of them empty.
Session shortSession() {
    return sessionOf(planOf({track("Dialog", {clip(48'000, 48'000, 100)})}));
}

TEST(AafSession, HeaderNamesTheProgram) {
    const WrittenObjects written(shortSession());
    const std::string version(versionText);
    const std::string place = "Header/IdentificationList/0";
    EXPECT_EQ(written.reader().valueOf(place, "CompanyName"), "\"Trellant\"");
    EXPECT_EQ(written.reader().valueOf(place, "ProductName"), "\"Trellant\"");
    EXPECT_EQ(written.reader().valueOf(place, "ProductVersionString"), '"' + version + '"');
    EXPECT_EQ(written.reader().valueOf(place, "ProductVersion"),
              "{" + std::to_string(versionMajor) + ", " + std::to_string(versionMinor) + ", " +
                  std::to_string(versionPatch) + ", 0, VersionReleased}");
    EXPECT_EQ(written.reader().valueOf(place, "Date"), "2026-07-01 12:00:00.0");
    EXPECT_EQ(written.reader().valueOf("Header", "LastModified"), "2026-07-01 12:00:00.0");
    EXPECT_EQ(written.reader().valueOf("Header", "IdentificationList"), "1 objects");
}

TEST(AafSession, CompositionHoldsTimecodeAndTracks) {
    Session session = shortSession();
    session.plan.start = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps2997DF());
    const WrittenObjects written(session);
    const auto& reader = written.reader();
    const std::string master = written.pathOf("MasterMob", "Clip");
    const std::string composition = written.pathOf("CompositionMob", "Scene 12");
    EXPECT_EQ(reader.textOf(composition),
              "CompositionMob\n"
              "  CreationTime 2026-07-01 12:00:00.0\n"
              "  LastModified 2026-07-01 12:00:00.0\n"
              "  MobID " +
                  reader.valueOf(composition, "MobID") +
                  "\n"
                  "  Name \"Scene 12\"\n"
                  "  Slots\n"
                  "    0 TimelineMobSlot\n"
                  "      EditRate 30000/1001\n"
                  "      Origin 0\n"
                  "      PhysicalTrackNumber 1\n"
                  "      Segment -> Timecode\n"
                  "        DataDefinition DataDef_Timecode\n"
                  "        Drop True\n"
                  "        FPS 30\n"
                  "        Length 60\n"
                  "        Start 107892\n"
                  "      SlotID 1\n"
                  "      SlotName \"Timecode\"\n"
                  "    1 TimelineMobSlot\n"
                  "      EditRate 48000/1\n"
                  "      Origin 0\n"
                  "      PhysicalTrackNumber 1\n"
                  "      Segment -> Sequence\n"
                  "        Components\n"
                  "          0 Filler\n"
                  "            " +
                  sound +
                  "            Length 48000\n"
                  "          1 SourceClip\n"
                  "            " +
                  sound +
                  "            Length 48000\n"
                  "            SourceID " +
                  reader.valueOf(master, "MobID") +
                  "\n"
                  "            SourceMobSlotID 1\n"
                  "            StartTime 100\n"
                  "        " +
                  sound +
                  "        Length 96000\n"
                  "      SlotID 2\n"
                  "      SlotName \"Dialog\"\n"
                  "  UsageCode Usage_TopLevel\n");
}

TEST(AafSession, ClipNamesAreThoseOfMasterMobs) {
    const WrittenObjects written(shortSession());
    const auto& reader = written.reader();
    const std::string master = written.pathOf("MasterMob", "Clip");
    const std::string source = written.pathOf("SourceMob", "Anna");
    EXPECT_EQ(reader.textOf(master),
              "MasterMob\n"
              "  CreationTime 2026-07-01 12:00:00.0\n"
              "  LastModified 2026-07-01 12:00:00.0\n"
              "  MobID " +
                  reader.valueOf(master, "MobID") +
                  "\n"
                  "  Name \"Clip\"\n"
                  "  Slots\n"
                  "    0 TimelineMobSlot\n"
                  "      EditRate 48000/1\n"
                  "      Origin 0\n"
                  "      PhysicalTrackNumber 1\n"
                  "      Segment -> SourceClip\n"
                  "        " +
                  sound +
                  "        Length 28800000\n"
                  "        SourceID " +
                  reader.valueOf(source, "MobID") +
                  "\n"
                  "        SourceMobSlotID 1\n"
                  "        StartTime 0\n"
                  "      SlotID 1\n");
}

TEST(AafSession, CompositionWithoutANameIsCalledAsTheSession) {
    Session session = shortSession();
    session.plan.name.reset();
    EXPECT_EQ(readBack(session).plan.name, "Song");
}

TEST(AafSession, ClipsOfOneNameShareAMasterMobAndOthersDoNot) {
    exchange::PlannedClip other = clip(300, 100);
    other.name = "Other";
    exchange::PlannedClip elsewhere = clip(400, 100);
    elsewhere.media = 1;
    const WrittenObjects written(
        sessionOf(planOf({track("A", {clip(0, 100), clip(100, 100, 50), other, elsewhere})},
                         {medium("Anna"), medium("Ben", 1)})));
    // One composition, three masters, two files.
    EXPECT_EQ(written.reader().valueOf("Header/Content", "Mobs"), "6 objects");
    EXPECT_EQ(written.reader().valueOf("Header/Content", "EssenceData"), "0 objects");
}

TEST(AafSession, SameSessionGivesTheSameBytes) {
    testing::MemoryImage first;
    testing::MemoryImage second;
    writeInto(first, shortSession());
    writeInto(second, shortSession());
    EXPECT_EQ(first.bytes(), second.bytes());
}

std::string mobIDOf(const WrittenObjects& written, std::string_view objectClass,
                    std::string_view name) {
    return written.reader().valueOf(written.pathOf(objectClass, name), "MobID");
}

TEST(AafSession, AnotherCutIsAnotherCompositionOfTheSameSources) {
    Session session = shortSession();
    session.plan.media.at(0).essenceID = "source 1";
    const WrittenObjects written(session);
    session.plan.tracks.at(0).lanes.at(0).clips.back().length -= 1;
    const WrittenObjects recut(session);
    EXPECT_NE(mobIDOf(written, "CompositionMob", "Scene 12"),
              mobIDOf(recut, "CompositionMob", "Scene 12"));
    EXPECT_NE(written.reader().valueOf("Header/IdentificationList/0", "GenerationAUID"),
              recut.reader().valueOf("Header/IdentificationList/0", "GenerationAUID"));
    EXPECT_EQ(mobIDOf(written, "MasterMob", "Clip"), mobIDOf(recut, "MasterMob", "Clip"));
    EXPECT_EQ(mobIDOf(written, "SourceMob", "Anna"), mobIDOf(recut, "SourceMob", "Anna"));
}

TEST(AafSession, AnotherSourceOfTheSameNameHasAnotherIdentifier) {
    Session session = shortSession();
    session.plan.media.at(0).essenceID = "source 1";
    const WrittenObjects written(session);
    session.plan.media.at(0).essenceID = "source 2";
    const WrittenObjects other(session);
    EXPECT_NE(mobIDOf(written, "MasterMob", "Clip"), mobIDOf(other, "MasterMob", "Clip"));
    EXPECT_NE(mobIDOf(written, "SourceMob", "Anna"), mobIDOf(other, "SourceMob", "Anna"));
    EXPECT_NE(mobIDOf(written, "CompositionMob", "Scene 12"),
              mobIDOf(other, "CompositionMob", "Scene 12"));
}

TEST(AafSession, EveryLaneIsATrackNumberedFromOne) {
    exchange::PlannedTrack dialog = track("Dialog", {clip(0, 100)});
    dialog.lanes.push_back({.name = "Dialog (2)", .clips = {clip(50, 100)}});
    const ReadAafSession read = readBack(sessionOf(planOf({dialog, track("Music", {})})));
    ASSERT_EQ(read.plan.tracks.size(), 3U);
    EXPECT_EQ(read.plan.tracks[0].name, "Dialog");
    EXPECT_EQ(read.plan.tracks[1].name, "Dialog (2)");
    EXPECT_EQ(read.plan.tracks[2].name, "Music");
    EXPECT_EQ(read.plan.tracks[1].lanes[0].clips.at(0).start, 50);
}

TEST(AafSession, AllTracksAreAsLongAsTheSession) {
    exchange::ExportPlan plan = planOf({track("A", {clip(0, 100)}), track("Empty", {})});
    plan.length = 500;
    const WrittenObjects written(sessionOf(plan));
    const std::string slots = written.pathOf("CompositionMob", "Scene 12") + "/Slots/";
    EXPECT_EQ(written.reader().valueOf(slots + "1/Segment", "Length"), "500");
    EXPECT_EQ(written.reader().valueOf(slots + "1/Segment/Components/1", "Length"), "400");
    EXPECT_EQ(written.reader().valueOf(slots + "2/Segment/Components/0", "Length"), "500");
}

TEST(AafSession, SessionWithoutClipsIsASession) {
    const WrittenObjects empty(sessionOf(planOf({}, {})));
    EXPECT_EQ(empty.reader().valueOf("Header/Content", "Mobs"), "1 objects");
    const ReadAafSession read = readBack(sessionOf(planOf({track("Empty", {})}, {})));
    EXPECT_EQ(read.plan.tracks.at(0).lanes.at(0).clips.size(), 0U);
    EXPECT_EQ(read.plan.length, 0);
}

TEST(AafSession, MarkersLieInTheirFrames) {
    Session session = sessionOf(planOf({track("A", {clip(0, 100)}), track("B", {clip(0, 100)})}));
    // 1,920 samples are a frame. The second one lasts up to sample 71,040, where frame 37 begins.
    session.markers = {
        {.position = 7 * 1'920 + 100, .text = "The clip is left out.", .kind = MarkerKind::dropped},
        {.position = 11 * 1'920 + 1'919, .length = 48'001, .text = "Other.", .track = 1},
        {.position = 40 * 1'920, .length = 1, .text = "Same.", .kind = MarkerKind::changed}};
    const WrittenObjects written(session);
    EXPECT_EQ(written.reader().textOf(written.pathOf("CompositionMob", "Scene 12") + "/Slots/3"),
              "EventMobSlot\n"
              "  EditRate 25/1\n"
              "  PhysicalTrackNumber 1\n"
              "  Segment -> Sequence\n"
              "    Components\n"
              "      0 DescriptiveMarker\n"
              "        Comment \"The clip is left out.\"\n"
              "        CommentMarkerColor {65535, 0, 0}\n"
              "        CommentMarkerUser \"Trellant\"\n"
              "        DataDefinition DataDef_DescriptiveMetadata\n"
              "        Position 7\n"
              "      1 DescriptiveMarker\n"
              "        Comment \"Other.\"\n"
              "        CommentMarkerColor {65535, 42405, 0}\n"
              "        CommentMarkerUser \"Trellant\"\n"
              "        DataDefinition DataDef_DescriptiveMetadata\n"
              "        DescribedSlots [3]\n"
              "        Length 26\n"
              "        Position 11\n"
              "      2 DescriptiveMarker\n"
              "        Comment \"Same.\"\n"
              "        CommentMarkerColor {0, 65535, 0}\n"
              "        CommentMarkerUser \"Trellant\"\n"
              "        DataDefinition DataDef_DescriptiveMetadata\n"
              "        Length 1\n"
              "        Position 40\n"
              "    DataDefinition DataDef_DescriptiveMetadata\n"
              "    Length 34\n"
              "  SlotID 4\n"
              "  SlotName \"Markers\"\n");
    EXPECT_EQ(readBack(session).markers,
              (std::vector<ReadMarker>{{.position = 7, .text = "The clip is left out."},
                                       {11, 26, "Other.", {"B"}},
                                       {40, 1, "Same.", {}}}));
}

TEST(AafSession, MarkersOfATrackDescribeItsFirstLane) {
    exchange::PlannedTrack dialog = track("Dialog", {clip(0, 100)});
    dialog.lanes.push_back({.name = "Dialog (2)", .clips = {clip(50, 100)}});
    Session session = sessionOf(planOf({dialog, track("Music", {})}));
    session.markers = {{.text = "one", .track = 0}, {.text = "two", .track = 1}};
    const ReadAafSession read = readBack(session);
    EXPECT_EQ(read.markers.at(0).tracks, std::vector<std::string>{"Dialog"});
    EXPECT_EQ(read.markers.at(1).tracks, std::vector<std::string>{"Music"});
}

struct LabelCase {
    const char* name;
    AAFTimecodeRate rate;
    std::string editRate;
    std::string fps;
    std::string drop;
    /// Of 01:00:00:00.
    std::string start;
    /// Of an hour and a sample at 48,000 samples in a second.
    std::string length;
};

class AafTimecodes : public ::testing::TestWithParam<LabelCase> {};

TEST_P(AafTimecodes, StartLabelStandsInFrames) {
    const LabelCase& label = GetParam();
    exchange::ExportPlan plan = planOf({track("A", {clip(0, 172'800'001)})});
    plan.start = AAFTimecodeAddress(1, 0, 0, 0, label.rate);
    const WrittenObjects written(sessionOf(plan));
    const std::string slot = written.pathOf("CompositionMob", "Scene 12") + "/Slots/0";
    EXPECT_EQ(written.reader().valueOf(slot, "EditRate"), label.editRate);
    EXPECT_EQ(written.reader().valueOf(slot + "/Segment", "FPS"), label.fps);
    EXPECT_EQ(written.reader().valueOf(slot + "/Segment", "Drop"), label.drop);
    EXPECT_EQ(written.reader().valueOf(slot + "/Segment", "Start"), label.start);
    EXPECT_EQ(written.reader().valueOf(slot + "/Segment", "Length"), label.length);
    EXPECT_EQ(readBack(sessionOf(plan)).plan.start, plan.start);
}

// 3600 * 24000 / 1001 is 86,313.7; 3600 * 30000 / 1001 is 107,892.1; twice that is 215,784.2. In an
// hour drop-frame leaves out 108 of 30 frames in a second, and 216 of 60.
INSTANTIATE_TEST_SUITE_P(
    Rates, AafTimecodes,
    ::testing::Values(
        LabelCase{"Fps23976", AAFTimecodeRate::fps23976(), "24000/1001", "24", "False", "86400",
                  "86314"},
        LabelCase{"Fps24", AAFTimecodeRate::fps24(), "24/1", "24", "False", "86400", "86401"},
        LabelCase{"Fps25", AAFTimecodeRate::fps25(), "25/1", "25", "False", "90000", "90001"},
        LabelCase{"Fps2997Drop", AAFTimecodeRate::fps2997DF(), "30000/1001", "30", "True", "107892",
                  "107893"},
        LabelCase{"Fps2997NonDrop", AAFTimecodeRate(AAFRational(30'000, 1001), 30, false),
                  "30000/1001", "30", "False", "108000", "107893"},
        LabelCase{"Fps30", AAFTimecodeRate(AAFRational(30), 30, false), "30/1", "30", "False",
                  "108000", "108001"},
        LabelCase{"Fps5994Drop", AAFTimecodeRate::fps5994DF(), "60000/1001", "60", "True", "215784",
                  "215785"}),
    [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace trellant::sessions
