// SPDX-License-Identifier: Apache-2.0
#include "otio_reader.h"
#include "session_samples.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <trellant_testing/comma_locale.h>

namespace trellant {

namespace {

using exchange::PlannedClip;
using nlohmann::json;
using sessions::Session;
using testing::addClip;
using testing::addMedia;
using testing::emptySession;
using testing::planOfOtio;
using testing::twoTracks;
using testing::withoutPositions;

std::string otioOf(const Session& session) {
    return testing::textOf(session, sessions::writeOtioSession);
}

json tracksOf(const Session& session) {
    return json::parse(otioOf(session)).at("tracks").at("children");
}

json rationalTime(double value, double rate) {
    return {{"OTIO_SCHEMA", "RationalTime.1"}, {"rate", rate}, {"value", value}};
}

json timeRange(const json& start, const json& duration) {
    return {{"OTIO_SCHEMA", "TimeRange.1"}, {"duration", duration}, {"start_time", start}};
}

TEST(OtioSession, StartsAtTheFrameOfItsTimecode) {
    Session session = emptySession();
    session.plan.start = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps2997DF());
    const json timeline = json::parse(otioOf(session));
    EXPECT_EQ(timeline.at("OTIO_SCHEMA"), "Timeline.1");
    EXPECT_EQ(timeline.at("name"), "Scene 12");
    // An hour of drop-frame timecode at 30 frames leaves out 108 labels.
    EXPECT_EQ(timeline.at("global_start_time"), rationalTime(107'892, 30'000.0 / 1001));
}

TEST(OtioSession, HasTheSessionsNameWhereThePlanHasNone) {
    Session session = emptySession();
    session.plan.name.reset();
    session.name = "Reel 3";
    EXPECT_EQ(json::parse(otioOf(session)).at("name"), "Reel 3");
}

TEST(OtioSession, FillsWithGapsInFrontOfClips) {
    Session session = emptySession();
    const std::size_t anna = addMedia(session, "Anna");
    addClip(session, "Anna take 1", anna, 24'000, 12'000, 2400);
    addClip(session, "Anna take 2", anna, 36'000, 100, 7);
    const json tracks = tracksOf(session);
    ASSERT_EQ(tracks.size(), 1U);
    EXPECT_EQ(tracks[0].at("kind"), "Audio");
    EXPECT_EQ(tracks[0].at("name"), "Dialog");
    const json& children = tracks[0].at("children");
    ASSERT_EQ(children.size(), 3U);
    EXPECT_EQ(children[0].at("OTIO_SCHEMA"), "Gap.1");
    EXPECT_EQ(children[0].at("source_range"),
              timeRange(rationalTime(0, 48'000), rationalTime(24'000, 48'000)));
    EXPECT_EQ(children[1].at("OTIO_SCHEMA"), "Clip.2");
    EXPECT_EQ(children[1].at("source_range"),
              timeRange(rationalTime(2400, 48'000), rationalTime(12'000, 48'000)));
    EXPECT_EQ(children[2].at("name"), "Anna take 2");
}

TEST(OtioSession, CountsSourcesInTheirOwnSamplesAndLengthsInThoseOfTheSession) {
    Session session = emptySession();
    addClip(session, "Rain close", addMedia(session, "Rain", 11'025), 0, 24'000, 5513);
    EXPECT_EQ(tracksOf(session)[0].at("children")[0].at("source_range"),
              timeRange(rationalTime(5513, 11'025), rationalTime(24'000, 48'000)));
}

TEST(OtioSession, CutsBothClipsInTheMiddleOfTheirCrossfade) {
    const json children = tracksOf(twoTracks())[0].at("children");
    ASSERT_EQ(children.size(), 3U);
    // They overlap from 43,200 to 48,000.
    EXPECT_EQ(children[0].at("source_range"),
              timeRange(rationalTime(2400, 48'000), rationalTime(45'600, 48'000)));
    EXPECT_EQ(children[1].at("OTIO_SCHEMA"), "Transition.1");
    EXPECT_EQ(children[1].at("transition_type"), "SMPTE_Dissolve");
    EXPECT_EQ(children[1].at("in_offset"), rationalTime(2400, 48'000));
    EXPECT_EQ(children[1].at("out_offset"), rationalTime(2400, 48'000));
    // 2,400 samples of the session are 551.25 of this source.
    EXPECT_EQ(children[2].at("source_range"),
              timeRange(rationalTime(5513 + 551.25, 11'025), rationalTime(50'400, 48'000)));
}

TEST(OtioSession, PutsTheMiddleOfAnOddCrossfadeBeforeItsHalf) {
    Session session = emptySession();
    const std::size_t anna = addMedia(session, "Anna");
    const exchange::PlannedFade fade{.length = 5};
    addClip(session, "A", anna, 0, 100, 0).fadeOut = fade;
    PlannedClip& next = addClip(session, "B", anna, 95, 100, 0);
    next.fadeIn = fade;
    next.crossfadesIn = true;
    const json children = tracksOf(session)[0].at("children");
    EXPECT_EQ(children[0].at("source_range").at("duration"), rationalTime(97, 48'000));
    EXPECT_EQ(children[1].at("in_offset"), rationalTime(2, 48'000));
    EXPECT_EQ(children[1].at("out_offset"), rationalTime(3, 48'000));
    EXPECT_EQ(children[2].at("source_range"),
              timeRange(rationalTime(2, 48'000), rationalTime(98, 48'000)));
}

TEST(OtioSession, RefersToMediaByPercentEncodedUrl) {
    Session session = emptySession();
    addClip(session, "A", addMedia(session, "Anna 100%"), 0, 1, 0);
    addClip(session, "B", addMedia(session, "Ben"), 1, 1, 0);
    session.media[1].reference = session.media[1].path = "/audio/B\xC3\xA9n.wav";
    const json children = tracksOf(session)[0].at("children");
    const json& reference = children[0].at("media_references").at("DEFAULT_MEDIA");
    EXPECT_EQ(reference.at("OTIO_SCHEMA"), "ExternalReference.1");
    EXPECT_EQ(reference.at("target_url"), "Scene%2012.media/Anna%20100%25.wav");
    EXPECT_EQ(reference.at("name"), "Anna 100%");
    EXPECT_EQ(reference.at("available_range"),
              timeRange(rationalTime(0, 48'000), rationalTime(2'880'000, 48'000)));
    EXPECT_EQ(children[1].at("media_references").at("DEFAULT_MEDIA").at("target_url"),
              "file:///audio/B%C3%A9n.wav");
}

TEST(OtioSession, LeavesAReferenceMissingAndKeepsItsRecordedPath) {
    const json clip = tracksOf(twoTracks())[1].at("children")[1];
    EXPECT_EQ(clip.at("active_media_reference_key"), "DEFAULT_MEDIA");
    const json& reference = clip.at("media_references").at("DEFAULT_MEDIA");
    EXPECT_EQ(reference.at("OTIO_SCHEMA"), "MissingReference.1");
    EXPECT_EQ(reference.at("name"), "Rain");
    EXPECT_EQ(reference.at("metadata").at("trellant").at("originalPath"), "Atmo:Rain");
    EXPECT_FALSE(reference.contains("target_url"));
}

TEST(OtioSession, KeepsUnderMetadataWhatHasNoFieldOfItsOwn) {
    const json tracks = tracksOf(twoTracks());
    const json fraction = [](int numerator, int denominator) {
        return json{{"numerator", numerator}, {"denominator", denominator}};
    }(1, 10);
    EXPECT_EQ(tracks[1].at("metadata").at("trellant"), (json{{"name", "Atmo"},
                                                             {"lane", 0},
                                                             {"fixedGain", 0.5},
                                                             {"fixedPan", 0},
                                                             {"muted", false},
                                                             {"solo", false}}));
    const json anna = tracks[0].at("children")[0].at("metadata").at("trellant");
    EXPECT_EQ(anna.at("sourceStartSample"), 2400);
    EXPECT_EQ(anna.at("fadeOut"), (json{{"direction", "fadeOut"},
                                        {"duration", fraction},
                                        {"curve", {{"power", json::object()}}},
                                        {"points", json::array()}}));
    EXPECT_FALSE(anna.contains("fadeIn"));
    const json rain = tracks[1].at("children")[1].at("metadata").at("trellant");
    EXPECT_EQ(rain.at("fixedClipGain"), 0.75);
    EXPECT_EQ(rain.at("clipGainAutomation").at("points")[1],
              (json{{"timelineOffset", {{"numerator", 1}, {"denominator", 2}}}, {"value", 1}}));
}

TEST(OtioSession, DisablesWhatIsMuted) {
    Session session = twoTracks();
    session.plan.tracks[0].muted = true;
    session.plan.tracks[1].lanes[0].clips[0].muted = true;
    const json tracks = tracksOf(session);
    EXPECT_EQ(tracks[0].at("enabled"), false);
    EXPECT_EQ(tracks[0].at("children")[0].at("enabled"), true);
    EXPECT_EQ(tracks[1].at("enabled"), true);
    EXPECT_EQ(tracks[1].at("children")[1].at("enabled"), false);
}

TEST(OtioSession, MarksLossesOnTheirTrackOrOnTheStack) {
    const json timeline = json::parse(otioOf(twoTracks()));
    const json& onStack = timeline.at("tracks").at("markers");
    const json left = timeRange(rationalTime(96'000, 48'000), rationalTime(0, 48'000));
    EXPECT_EQ(onStack, json::array({json{{"OTIO_SCHEMA", "Marker.2"},
                                         {"name", "Left out."},
                                         {"color", "RED"},
                                         {"marked_range", left},
                                         {"range", left}}}));
    const json& tracks = timeline.at("tracks").at("children");
    EXPECT_EQ(tracks[0].at("markers"), json::array());
    ASSERT_EQ(tracks[1].at("markers").size(), 1U);
    const json& marker = tracks[1].at("markers")[0];
    EXPECT_EQ(marker.at("color"), "YELLOW");
    EXPECT_EQ(marker.at("marked_range"),
              timeRange(rationalTime(48'000, 48'000), rationalTime(24'000, 48'000)));
    EXPECT_EQ(marker.at("range"), marker.at("marked_range"));
}

TEST(OtioSession, WritesFurtherLanesAsTracksOfTheirOwn) {
    Session session = emptySession();
    const std::size_t anna = addMedia(session, "Anna");
    session.plan.tracks[0].lanes.push_back({.name = "Dialog (2)"});
    addClip(session, "Over it", anna, 10, 10, 0);
    session.markers.push_back({.text = "Lost.", .track = 0});
    const json tracks = tracksOf(session);
    ASSERT_EQ(tracks.size(), 2U);
    EXPECT_EQ(tracks[1].at("name"), "Dialog (2)");
    EXPECT_EQ(tracks[1].at("metadata").at("trellant").at("name"), "Dialog");
    EXPECT_EQ(tracks[0].at("markers").size(), 1U);
    EXPECT_EQ(tracks[1].at("markers").size(), 0U);
}

TEST(OtioSession, ReadsBackAsThePlanItWasWrittenFrom) {
    EXPECT_EQ(planOfOtio(otioOf(twoTracks())).tracks, withoutPositions(twoTracks().plan).tracks);
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        const Session session = testing::randomSession(seed);
        EXPECT_EQ(planOfOtio(otioOf(session)), withoutPositions(session.plan)) << seed;
    }
}

TEST(OtioSession, KeepsNamesAsTheyAre) {
    const std::string hostile = testing::hostileName();
    Session session = emptySession();
    addClip(session, hostile, addMedia(session, "Anna"), 0, 1, 0);
    session.plan.media[0].name = hostile;
    session.plan.tracks[0].name = session.plan.tracks[0].lanes[0].name = hostile;
    session.plan.name = hostile;
    session.markers.push_back({.text = hostile});
    const std::string text = otioOf(session);
    EXPECT_EQ(planOfOtio(text), withoutPositions(session.plan));
    EXPECT_EQ(json::parse(text).at("tracks").at("markers")[0].at("name"), hostile);
}

TEST(OtioSession, CountsExactlyUpToTheLastSampleOfAPlan) {
    Session session = emptySession();
    const std::size_t anna = addMedia(session, "Anna");
    session.plan.media[anna].frames = exchange::mostSamples;
    addClip(session, "Last", anna, exchange::mostSamples - 3, 3, exchange::mostSamples - 7);
    EXPECT_EQ(planOfOtio(otioOf(session)), withoutPositions(session.plan));
}

TEST(OtioSession, CountsWithoutACommaInAnyLocale) {
    const std::string expected = otioOf(twoTracks());
    const testing::CommaLocale comma;
    EXPECT_EQ(otioOf(twoTracks()), expected);
}

TEST(OtioSession, HoldsNoClipAndVeryManyTracks) {
    Session session = emptySession();
    EXPECT_EQ(tracksOf(session)[0].at("children"), json::array());
    session.plan.tracks.resize(10'000, session.plan.tracks[0]);
    EXPECT_EQ(tracksOf(session).size(), 10'000U);
    session.plan.tracks.clear();
    EXPECT_EQ(tracksOf(session), json::array());
}

}  // namespace

}  // namespace trellant
