// SPDX-License-Identifier: Apache-2.0
#include <trellant/exporter/exporter.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace trellant::testing {
namespace {

using nlohmann::json;
using Severity = AAFUnsupportedFeature::Severity;

HandOff handOffWithAClip() {
    HandOff handOff;
    AAFTimeline& timeline = handOff.timeline;
    timeline.clock.timelineZero = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps25());
    AAFTrackState track;
    track.id = "t";
    track.index = 2;
    track.name = "Dialog";
    timeline.tracks.push_back(track);
    AAFClipEvent event;
    event.clipName = "Anna \"1\"\n";
    timeline.events.push_back(event);
    return handOff;
}

TEST(LossesDocument, WithoutLossesIsAnEmptyArray) {
    EXPECT_EQ(lossesDocument("mix.omf", HandOff(), {}), "[]\n");
}

TEST(LossesDocument, HasARecordALineWithThoseOfReadingFirst) {
    HandOff handOff = handOffWithAClip();
    handOff.timeline.unsupportedFeatures.push_back(
        {"omf-unsupported-1", Severity::informational, "dropped a clip", "CMOB[1]"});
    PlacedLoss placed;
    placed.description = "dropped a clip";
    placed.trackName = "Atmo";
    placed.trackNumber = 7;
    placed.start = AAFRational(3, 2);
    placed.duration = AAFRational(2, 5);
    placed.plain = "The clip is left out.";
    handOff.losses.push_back(placed);
    exchange::ExportLoss loss;
    loss.severity = Severity::renderAffecting;
    loss.track = 0;
    loss.event = 0;
    loss.start = AAFRational(1);
    loss.sentence = "The clip's gain is left out.";
    loss.technical = "clip gain (0.5): not in markers";
    const std::string text = lossesDocument("mix.omf", handOff, {loss});
    // 1.5 s are 37.5 frames, rounded half up; 1.9 s are 47.5.
    const json expected = json::parse(R"([
        {"file": "mix.omf", "loss": 1, "effect": "dropped", "track": "Atmo", "trackNumber": 7,
         "in": "01:00:01:13", "out": "01:00:01:23", "startSeconds": 1.5, "startSecondsExact": "3/2",
         "durationSeconds": 0.4, "durationSecondsExact": "2/5", "sentence": "The clip is left out.",
         "technical": "dropped a clip", "objectPath": "CMOB[1]"},
        {"file": "mix.omf", "loss": 2, "effect": "soundsDifferent", "track": "Dialog",
         "trackNumber": 3, "clip": "Anna \"1\"\n", "in": "01:00:01:00", "startSeconds": 1,
         "startSecondsExact": "1", "sentence": "The clip's gain is left out.",
         "technical": "clip gain (0.5): not in markers"}])");
    EXPECT_EQ(json::parse(text), expected);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4);
}

TEST(LossesDocument, ClipsNamedByTheirMasterMobsAreMarked) {
    HandOff handOff = handOffWithAClip();
    handOff.timeline.events[0].clipName.reset();
    handOff.masterMobs = {{.mobID = "m", .name = "Anna"}};
    handOff.masterMobOfEvents = {0};
    handOff.timeline.unsupportedFeatures.push_back(
        {"omf-unsupported-1", Severity::informational, "dropped a clip", std::nullopt});
    handOff.losses.push_back(
        {.description = "dropped a clip", .clipName = "Ben", .isClipNamedByMasterMob = true});
    exchange::ExportLoss loss;
    loss.event = 0;
    const json records = json::parse(lossesDocument("mix.omf", handOff, {loss}));
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].at("clip"), "Ben");
    EXPECT_EQ(records[0].at("clipNameFrom"), "masterMob");
    EXPECT_EQ(records[1].at("clip"), "Anna");
    EXPECT_EQ(records[1].at("clipNameFrom"), "masterMob");
}

TEST(LossesDocument, ALossOfTheWholeSessionHasNoPlace) {
    exchange::ExportLoss loss;
    loss.sentence = "Said.";
    const json document = json::parse(lossesDocument("a\xFF", handOffWithAClip(), {loss}));
    EXPECT_EQ(document, json::parse(R"([{"file": "a\\xff", "loss": 1, "effect": "dropped",
                                         "sentence": "Said.", "technical": ""}])"));
}

TEST(LossesDocument, AChangeThatNobodyHearsIsNothingDropped) {
    exchange::ExportLoss loss;
    loss.isLeftOut = false;
    const json document = json::parse(lossesDocument("a", handOffWithAClip(), {loss}));
    EXPECT_EQ(document.at(0).at("effect"), "changed");
    loss.severity = Severity::renderAffecting;
    const json heard = json::parse(lossesDocument("a", handOffWithAClip(), {loss}));
    EXPECT_EQ(heard.at(0).at("effect"), "soundsDifferent");
}

}  // namespace
}  // namespace trellant::testing
