// SPDX-License-Identifier: Apache-2.0
// Names, numbers and amounts that no person would choose.
#include "aaf_limits.h"
#include "sample_sessions.h"
#include "written_session.h"

#include <limits>

namespace trellant::sessions {
namespace {

using exchange::mostSamples;

struct NameCase {
    const char* name;
    std::string given;
    std::string read;
};

class AafNames : public ::testing::TestWithParam<NameCase> {};

TEST_P(AafNames, OfEverythingAreRead) {
    const std::string& given = GetParam().given;
    exchange::PlannedClip one = clip(0, 480);
    one.name = given;
    exchange::PlannedMedia media = medium("Anna");
    media.name = given;
    exchange::ExportPlan plan = planOf({track(given, {one})}, {media});
    plan.name = given;
    Session session = sessionOf(plan);
    session.markers = {{.position = 1, .text = given}};
    const ReadAafSession read = readBack(session);
    const std::string& expected = GetParam().read;
    EXPECT_EQ(read.plan.name, expected);
    EXPECT_EQ(read.plan.tracks.at(0).name, expected);
    EXPECT_EQ(read.plan.tracks.at(0).lanes.at(0).clips.at(0).name, expected);
    EXPECT_EQ(read.plan.media.at(0).name, expected);
    EXPECT_EQ(read.markers.at(0).text, expected);
}

INSTANTIATE_TEST_SUITE_P(
    Names, AafNames,
    ::testing::Values(
        NameCase{"Of32Units", std::string(32, 'n'), std::string(32, 'n')},
        NameCase{"Of201Units", std::string(201, 'n'), std::string(201, 'n')},
        NameCase{"Of10Kilobytes", std::string(10'240, 'n'), std::string(10'240, 'n')},
        NameCase{"BeyondAllBounds", std::string(100'000, 'n'), std::string(32'766, 'n')},
        NameCase{"Zero", std::string("a\0b", 3), "ab"}, NameCase{"ControlsAlone", "\x01\n\x7F", ""},
        NameCase{"Empty", "", ""},
        NameCase{"RightToLeft", "\xE2\x80\xAE\xD8\xA7\xD9\x84", "\xE2\x80\xAE\xD8\xA7\xD9\x84"},
        NameCase{"Separators", "../a\\b:c|d?*<>\"", "../a\\b:c|d?*<>\""},
        NameCase{"BeyondTheFirstPlane", "\xF0\x9F\x8E\xB5", "\xF0\x9F\x8E\xB5"},
        NameCase{"BrokenUTF8", "a\xFFz", "a\xEF\xBF\xBDz"}),
    [](const auto& one) { return std::string(one.param.name); });

TEST(AafHostileSessions, EqualNamesOfMediaAreDifferentFiles) {
    exchange::PlannedClip other = clip(480, 480);
    other.media = 1;
    exchange::ExportPlan plan =
        planOf({track("A", {clip(0, 480), other})}, {medium("Anna"), medium("Anna", 1)});
    EXPECT_EQ(readBack(sessionOf(plan)).plan, plan);
}

TEST(AafHostileSessions, PositionsNearTheLargest) {
    exchange::PlannedClip last = clip(mostSamples - 1000, 1000, mostSamples - 1000);
    last.fadeIn = fade(600);
    last.fadeOut = fade(400);
    const exchange::ExportPlan plan = planOf({track("A", {clip(0, 1), last})});
    ASSERT_EQ(plan.length, mostSamples);
    EXPECT_EQ(readBack(sessionOf(plan)).plan, plan);
}

TEST(AafHostileSessions, MarkersOutsideTheSessionAreHeldToIt) {
    Session session = sessionOf(planOf({track("A", {clip(0, 480)})}));
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    session.markers = {{.position = -5, .length = -1, .text = "one", .track = 7},
                       {.position = most, .length = most, .text = "two"}};
    // 2^53 samples are 4,691,249,611,844.27 frames of 1,920.
    EXPECT_EQ(readBack(session).markers,
              (std::vector<ReadMarker>{{.position = 0, .text = "one"},
                                       {4'691'249'611'844, 1, "two", {}}}));
}

TEST(AafHostileSessions, MediaOfImpossibleForms) {
    exchange::PlannedMedia media = medium("Anna");
    media.sampleRate = AAFRational(std::numeric_limits<std::int64_t>::max(), 3);
    media.channelCount = std::numeric_limits<std::int64_t>::max();
    media.bitDepth = -3;
    media.frames = -1;
    media.isOffline = true;
    const ReadAafSession read = readBack(sessionOf(planOf({track("A", {clip(0, 480)})}, {media})));
    EXPECT_EQ(read.plan.media.at(0).sampleRate, AAFRational(48'000));
    EXPECT_EQ(read.plan.media.at(0).channelCount, 65'535);
    EXPECT_EQ(read.plan.media.at(0).bitDepth, 1);
    EXPECT_EQ(read.plan.media.at(0).frames, 0);
}

TEST(AafHostileSessions, ChannelsBeyondAllFiles) {
    exchange::PlannedMedia media = medium("Anna");
    media.channelCount = 2;
    media.frames = 10;
    exchange::PlannedClip one = clip(0, 480);
    one.channel = std::numeric_limits<std::int64_t>::max();
    exchange::ExportPlan plan = planOf({track("A", {one})}, {media});
    EXPECT_EQ(readBack(sessionOf(plan)).plan.tracks[0].lanes[0].clips[0].channel, 65'534);
    plan.tracks[0].lanes[0].clips[0].channel = -4;
    EXPECT_EQ(readBack(sessionOf(plan)).plan.tracks[0].lanes[0].clips[0].channel, 0);
}

TEST(AafHostileSessions, TwentyThousandClipsOnOneLane) {
    std::vector<exchange::PlannedClip> clips;
    for (std::int64_t index = 0; index < 20'000; ++index) {
        clips.push_back(clip(index * 1000, 900, index));
        clips.back().name = "Clip " + std::to_string(index % 2000);
    }
    const exchange::ExportPlan plan = planOf({track("A", std::move(clips))});
    EXPECT_EQ(readBack(sessionOf(plan)).plan, plan);
}

TEST(AafHostileSessions, TenThousandTracks) {
    std::vector<exchange::PlannedTrack> tracks;
    for (std::int64_t index = 0; index < 10'000; ++index) {
        tracks.push_back(track("Track " + std::to_string(index), {clip(0, 1000, index)}));
    }
    const exchange::ExportPlan plan = planOf(std::move(tracks));
    EXPECT_EQ(readBack(sessionOf(plan)).plan, plan);
}

TEST(AafHostileSessions, ManyMarkersOfATrackOfManyLanes) {
    exchange::PlannedTrack many = track("A", {});
    many.lanes.resize(2000, {.name = "A"});
    Session session = sessionOf(planOf({many}));
    for (std::int64_t index = 0; index < 2000; ++index) {
        session.markers.push_back({.position = index, .text = "x", .track = 0});
    }
    EXPECT_EQ(readBack(session).markers.size(), 2000U);
}

}  // namespace
}  // namespace trellant::sessions
