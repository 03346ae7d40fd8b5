// SPDX-License-Identifier: Apache-2.0
#include "reaper_reader.h"
#include "session_samples.h"

#include <trellant/exchange/format_limits.h>

#include <gtest/gtest.h>

#include <set>
#include <trellant_testing/comma_locale.h>

namespace trellant {

namespace {

std::string reaperName(std::string_view name) {
    return exchange::nameWithin(exchange::ExportFormat::reaper, name);
}

using exchange::PlannedClip;
using sessions::Session;
using testing::addClip;
using testing::addMedia;
using testing::emptySession;
using testing::ReaperChunk;
using testing::reaperProject;
using testing::twoTracks;
using Line = ReaperChunk::Line;

std::string textOf(const Session& session) {
    return testing::textOf(session, sessions::writeReaperSession);
}

ReaperChunk projectOf(const Session& session) {
    return reaperProject(textOf(session));
}

ReaperChunk itemOf(const Session& session, std::size_t track, std::size_t item) {
    return projectOf(session).chunksOf("TRACK").at(track).chunksOf("ITEM").at(item);
}

Session oneClip() {
    Session session = emptySession();
    addClip(session, "Anna take 1", addMedia(session, "Anna"), 24'000, 12'000, 2400);
    return session;
}

TEST(ReaperSession, BeginsWithWhatTheProjectIs) {
    Session session = emptySession();
    session.date = 1'700'000'000;
    const ReaperChunk project = projectOf(session);
    EXPECT_EQ(project.head, (Line{"REAPER_PROJECT", "0.1", "7.0/linux-x86_64", "1700000000"}));
    EXPECT_EQ(project.line("TITLE"), (Line{"TITLE", "Scene 12"}));
    EXPECT_EQ(project.line("SAMPLERATE"), (Line{"SAMPLERATE", "48000", "1", "0"}));
    EXPECT_EQ(project.line("PROJOFFS"), (Line{"PROJOFFS", "3600", "0", "0"}));
    EXPECT_EQ(project.line("TIMEMODE"),
              (Line{"TIMEMODE", "5", "2", "-1", "25", "0", "-1", "0", "0"}));
}

TEST(ReaperSession, StartsAtTheTrueSecondOfADropFrameLabel) {
    Session session = emptySession();
    session.plan.start = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps2997DF());
    const ReaperChunk project = projectOf(session);
    // 107,892 frames of 1001/30000 s.
    EXPECT_EQ(project.line("PROJOFFS").at(1), "3599.9964");
    EXPECT_EQ(project.line("TIMEMODE"),
              (Line{"TIMEMODE", "5", "3", "-1", "30", "1", "-1", "0", "0"}));
}

TEST(ReaperSession, CountsFramesAsTheRateDoes) {
    struct Case {
        AAFTimecodeRate rate;
        std::string choice;
        std::string frames;
        std::string counting;
    };
    const std::vector<Case> cases{
        {AAFTimecodeRate::fps23976(), "0", "24", "2"},
        {AAFTimecodeRate::fps24(), "1", "24", "0"},
        {AAFTimecodeRate(AAFRational(30'000, 1001), 30, false), "4", "30", "2"},
        {AAFTimecodeRate(AAFRational(30), 30, false), "5", "30", "0"},
        {AAFTimecodeRate(AAFRational(50), 50, false), "8", "50", "0"},
        {AAFTimecodeRate(AAFRational(60), 60, false), "9", "60", "0"}};
    for (const Case& expected : cases) {
        Session session = emptySession();
        session.plan.start = AAFTimecodeAddress(0, 0, 0, 0, expected.rate);
        const Line mode = projectOf(session).line("TIMEMODE");
        EXPECT_EQ(mode.at(2), expected.choice);
        EXPECT_EQ(mode.at(4), expected.frames);
        EXPECT_EQ(mode.at(5), expected.counting);
    }
    Session session = emptySession();
    session.plan.start = AAFTimecodeAddress(0, 0, 0, 0, AAFTimecodeRate::fps5994DF());
    EXPECT_TRUE(projectOf(session).linesOf("TIMEMODE").empty());
}

TEST(ReaperSession, PlacesItemsInSeconds) {
    const ReaperChunk item = itemOf(oneClip(), 0, 0);
    EXPECT_EQ(item.line("POSITION"), (Line{"POSITION", "0.5"}));
    EXPECT_EQ(item.line("LENGTH"), (Line{"LENGTH", "0.25"}));
    EXPECT_EQ(item.line("LOOP"), (Line{"LOOP", "0"}));
    EXPECT_EQ(item.line("NAME"), (Line{"NAME", "Anna take 1"}));
    EXPECT_EQ(item.line("SOFFS"), (Line{"SOFFS", "0.05"}));
    EXPECT_EQ(item.line("CHANMODE"), (Line{"CHANMODE", "0"}));
    EXPECT_EQ(item.line("MUTE").at(1), "0");
    EXPECT_EQ(item.line("VOLPAN"), (Line{"VOLPAN", "1", "0", "1", "-1"}));
    // Both are said: an item without them gets a fade.
    EXPECT_EQ(item.line("FADEIN"), (Line{"FADEIN", "0", "0", "0", "0", "0", "0", "0"}));
    EXPECT_EQ(item.line("FADEOUT"), (Line{"FADEOUT", "0", "0", "0", "0", "0", "0", "0"}));
    const ReaperChunk source = item.chunksOf("SOURCE").at(0);
    EXPECT_EQ(source.head, (Line{"SOURCE", "WAVE"}));
    EXPECT_EQ(source.line("FILE"), (Line{"FILE", "Scene 12.media/Anna.wav"}));
}

TEST(ReaperSession, SaysEnoughDigitsForEverySample) {
    Session session = oneClip();
    PlannedClip& clip = session.plan.tracks[0].lanes[0].clips[0];
    clip.start = 1;
    clip.length = exchange::mostSamples - 1;
    const ReaperChunk item = itemOf(session, 0, 0);
    // 1/48000, and (2^53 - 1)/48000 = 187,649,984,473.7706458...
    EXPECT_EQ(item.line("POSITION").at(1), "0.000020833333333333333");
    EXPECT_EQ(item.line("LENGTH").at(1), "187649984473.77066");
}

TEST(ReaperSession, FadesByTheNearestShape) {
    Session session = oneClip();
    PlannedClip& clip = session.plan.tracks[0].lanes[0].clips[0];
    clip.fadeIn = {.length = 4800, .curve = AAFAutomationInterpolation::power()};
    clip.fadeOut = {.length = 2400, .curve = AAFAutomationInterpolation::logarithmic()};
    const ReaperChunk item = itemOf(session, 0, 0);
    EXPECT_EQ(item.line("FADEIN"), (Line{"FADEIN", "1", "0.1", "0", "1", "0", "0", "0"}));
    EXPECT_EQ(item.line("FADEOUT"), (Line{"FADEOUT", "2", "0.05", "0", "2", "0", "0", "0"}));
    clip.fadeIn->curve = AAFAutomationInterpolation::unsupported("x");
    EXPECT_EQ(itemOf(session, 0, 0).line("FADEIN").at(1), "0");
}

TEST(ReaperSession, LetsItemsOfACrossfadeOverlap) {
    const Session session = twoTracks();
    const ReaperChunk before = itemOf(session, 0, 0);
    const ReaperChunk after = itemOf(session, 0, 1);
    EXPECT_EQ(before.line("POSITION").at(1), "0");
    EXPECT_EQ(before.line("LENGTH").at(1), "1");
    EXPECT_EQ(before.line("FADEOUT").at(2), "0.1");
    EXPECT_EQ(after.line("POSITION").at(1), "0.9");
    EXPECT_EQ(after.line("FADEIN").at(2), "0.1");
}

TEST(ReaperSession, PlaysOneChannelOfSeveral) {
    Session session = oneClip();
    session.plan.media[0].channelCount = 64;
    const std::vector<std::pair<std::int64_t, std::string>> modes{
        {0, "3"}, {1, "4"}, {2, "5"}, {63, "66"}, {64, "66"}};
    for (const auto& [channel, mode] : modes) {
        session.plan.tracks[0].lanes[0].clips[0].channel = channel;
        EXPECT_EQ(itemOf(session, 0, 0).line("CHANMODE").at(1), mode);
    }
    EXPECT_EQ(projectOf(session).chunksOf("TRACK").at(0).line("NCHAN").at(1), "2");
}

TEST(ReaperSession, HasRoomForAllChannelsOfItsItems) {
    Session session = oneClip();
    const std::vector<std::pair<std::int64_t, std::string>> rooms{
        {1, "2"}, {2, "2"}, {5, "6"}, {6, "6"}, {100, "64"}};
    for (const auto& [channels, room] : rooms) {
        session.plan.media[0].channelCount = channels;
        EXPECT_EQ(projectOf(session).chunksOf("TRACK").at(0).line("NCHAN").at(1), room);
    }
}

TEST(ReaperSession, KeepsGainPanMuteAndSolo) {
    Session session = twoTracks();
    session.plan.tracks[1].muted = true;
    session.plan.tracks[0].solo = true;
    session.plan.tracks[1].lanes[0].clips[0].muted = true;
    const std::vector<ReaperChunk> tracks = projectOf(session).chunksOf("TRACK");
    EXPECT_EQ(tracks.at(0).line("VOLPAN"), (Line{"VOLPAN", "1", "0", "-1", "-1", "1"}));
    EXPECT_EQ(tracks.at(1).line("VOLPAN"), (Line{"VOLPAN", "0.5", "-1", "-1", "-1", "1"}));
    EXPECT_EQ(tracks.at(0).line("MUTESOLO"), (Line{"MUTESOLO", "0", "1", "0"}));
    EXPECT_EQ(tracks.at(1).line("MUTESOLO"), (Line{"MUTESOLO", "1", "0", "0"}));
    const ReaperChunk item = itemOf(session, 1, 0);
    EXPECT_EQ(item.line("MUTE").at(1), "1");
    EXPECT_EQ(item.line("VOLPAN").at(3), "0.75");
    session.plan.tracks[1].lanes[0].clips[0].gain = -0.5;
    EXPECT_EQ(itemOf(session, 1, 0).line("VOLPAN").at(3), "-0.5");
}

TEST(ReaperSession, MovesGainByEnvelopesOfTheTake) {
    const ReaperChunk envelope = itemOf(twoTracks(), 1, 0).chunksOf("VOLENV").at(0);
    EXPECT_EQ(envelope.line("ACT"), (Line{"ACT", "1", "-1"}));
    // The clip lasts for half a second.
    EXPECT_EQ(envelope.linesOf("PT"),
              (std::vector<Line>{{"PT", "0", "0.25", "0"}, {"PT", "0.25", "1", "0"}}));
}

TEST(ReaperSession, MovesGainAndPanOfTracks) {
    Session session = twoTracks();
    exchange::PlannedTrack& track = session.plan.tracks[1];
    track.gainAutomation =
        AAFAutomationEnvelope{.interpolation = AAFAutomationInterpolation::constant(),
                              .points = {{AAFRational(1, 4), 2.0}}};
    track.panAutomation = AAFAutomationEnvelope{
        .points = {{AAFRational(0), 0.0}, {AAFRational(1, 2), 0.5}, {AAFRational(1), 1.0}}};
    const ReaperChunk chunk = projectOf(session).chunksOf("TRACK").at(1);
    // The session lasts for two seconds.
    EXPECT_EQ(chunk.chunksOf("VOLENV2").at(0).linesOf("PT"),
              (std::vector<Line>{{"PT", "0.5", "2", "1"}}));
    EXPECT_EQ(
        chunk.chunksOf("PANENV2").at(0).linesOf("PT"),
        (std::vector<Line>{{"PT", "0", "1", "0"}, {"PT", "1", "0", "0"}, {"PT", "2", "-1", "0"}}));
    EXPECT_EQ(chunk.line("VOLPAN"), (Line{"VOLPAN", "0.5", "0", "-1", "-1", "1"}));
}

TEST(ReaperSession, NamesTheRecordedPathOfMissingMedia) {
    Session session = twoTracks();
    EXPECT_EQ(itemOf(session, 1, 0).chunksOf("SOURCE").at(0).line("FILE").at(1), "Atmo:Rain");
    session.plan.media[2].recordedPath.reset();
    EXPECT_EQ(itemOf(session, 1, 0).chunksOf("SOURCE").at(0).line("FILE").at(1), "Rain.wav");
}

TEST(ReaperSession, MarksLosses) {
    const std::vector<Line> markers = projectOf(twoTracks()).linesOf("MARKER");
    ASSERT_EQ(markers.size(), 3U);
    // A region has two lines. Yellow is 0xFFFF, red 0xFF, and a bit above says that there is one.
    EXPECT_EQ(markers[0].size(), 10U);
    EXPECT_EQ(Line(markers[0].begin(), markers[0].begin() + 7),
              (Line{"MARKER", "1", "1", "Atmo: Silent.", "1", "16842751", "1"}));
    EXPECT_EQ(markers[1], (Line{"MARKER", "1", "1.5", "", "1"}));
    EXPECT_EQ(Line(markers[2].begin(), markers[2].begin() + 7),
              (Line{"MARKER", "2", "2", "Left out.", "0", "16777471", "1"}));
}

TEST(ReaperSession, QuotesNamesByAQuoteThatTheyDoNotHold) {
    EXPECT_EQ(reaperName("plain"), "plain");
    EXPECT_EQ(reaperName("a\r\nb\tc"), "a b c");
    EXPECT_EQ(reaperName("\"a'"), "\"a'");
    EXPECT_EQ(reaperName("\"a'`b`"), "\"a''b'");
    for (const std::string& name :
         {std::string(), std::string("a b"), std::string("\"Hi\" there"), std::string("\"Don't\""),
          std::string("`'\""), std::string("> <TRACK"), testing::hostileName()}) {
        Session session = oneClip();
        session.plan.tracks[0].lanes[0].name = name;
        session.plan.tracks[0].lanes[0].clips[0].name = name;
        session.plan.name = name;
        session.markers.push_back({.text = name});
        const ReaperChunk project = projectOf(session);
        EXPECT_EQ(project.line("TITLE").at(1), reaperName(name));
        EXPECT_EQ(project.chunksOf("TRACK").at(0).line("NAME").at(1), reaperName(name));
        EXPECT_EQ(project.linesOf("MARKER").at(0).at(3), reaperName(name));
        EXPECT_EQ(itemOf(session, 0, 0).line("NAME").at(1), reaperName(name));
    }
}

TEST(ReaperSession, ReadsBackAsThePlanItWasWrittenFrom) {
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        const Session session = testing::randomSession(seed);
        EXPECT_EQ(testing::planOfReaper(textOf(session), session.plan.media),
                  testing::asReaperSays(session.plan))
            << seed;
    }
}

TEST(ReaperSession, WritesTheSameBytesInAnyLocale) {
    const std::string expected = textOf(twoTracks());
    const testing::CommaLocale comma;
    EXPECT_EQ(textOf(twoTracks()), expected);
}

TEST(ReaperSession, HasIdentifiersOfItsOwnForEveryPart) {
    Session session = twoTracks();
    const auto identifiersOf = [&session] {
        std::vector<std::string> found;
        const std::string text = textOf(session);
        for (std::size_t at = text.find('{'); at != std::string::npos;
             at = text.find('{', at + 1)) {
            found.push_back(text.substr(at, text.find('}', at) - at));
        }
        return found;
    };
    std::vector<std::string> first = identifiersOf();
    // Two tracks, each twice, three items, an envelope, two markers.
    EXPECT_EQ(first.size(), 10U);
    EXPECT_EQ(std::set<std::string>(first.begin(), first.end()).size(), 8U);
    session.plan.name = "Another";
    EXPECT_NE(identifiersOf(), first);
}

TEST(ReaperSession, HoldsNoClipAndVeryManyTracks) {
    Session session = emptySession();
    EXPECT_TRUE(projectOf(session).chunksOf("TRACK").at(0).chunks.empty());
    session.plan.tracks.resize(10'000, session.plan.tracks[0]);
    EXPECT_EQ(projectOf(session).chunks.size(), 10'000U);
    session.plan.tracks.clear();
    EXPECT_TRUE(projectOf(session).chunks.empty());
}

}  // namespace

}  // namespace trellant
