// SPDX-License-Identifier: Apache-2.0
#include <trellant/exporter/session_markers.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trellant::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;
using Severity = AAFUnsupportedFeature::Severity;

exchange::ExportPlan planAt48000() {
    exchange::ExportPlan plan;
    plan.rate = 48'000;
    return plan;
}

HandOff handOffWithTracks() {
    HandOff handOff;
    for (const char* id : {"one", "two"}) {
        AAFTrackState track;
        track.id = id;
        handOff.timeline.tracks.push_back(track);
    }
    return handOff;
}

void addLoss(HandOff& handOff, Severity severity, const PlacedLoss& loss) {
    handOff.timeline.unsupportedFeatures.push_back({"x", severity, loss.description, {}});
    handOff.losses.push_back(loss);
}

TEST(LossMarkers, StandWhereTheLossIsAndSayIt) {
    HandOff handOff = handOffWithTracks();
    PlacedLoss loss;
    loss.plain = "This stretch is silent.";
    loss.trackID = "two";
    loss.clipName = "Anna";
    loss.start = AAFRational(3, 2);
    loss.duration = AAFRational(1, 4);
    addLoss(handOff, Severity::renderAffecting, loss);
    const auto markers = lossMarkers(handOff, {}, planAt48000());
    ASSERT_THAT(markers, SizeIs(1));
    EXPECT_EQ(markers[0].position, 72'000);
    EXPECT_EQ(markers[0].length, 12'000);
    EXPECT_EQ(markers[0].text, "Anna: This stretch is silent.");
    EXPECT_EQ(markers[0].track, 1U);
    EXPECT_EQ(markers[0].kind, sessions::MarkerKind::soundsDifferent);
}

TEST(LossMarkers, AreInOrderOfTheirPlaces) {
    HandOff handOff = handOffWithTracks();
    PlacedLoss late;
    late.description = "late";
    late.start = AAFRational(2);
    addLoss(handOff, Severity::informational, late);
    exchange::ExportLoss early;
    early.start = AAFRational(1);
    early.sentence = "early";
    early.track = 0;
    const auto markers = lossMarkers(handOff, {early}, planAt48000());
    ASSERT_THAT(markers, SizeIs(2));
    EXPECT_EQ(markers[0].text, "early");
    EXPECT_EQ(markers[0].track, 0U);
    EXPECT_EQ(markers[1].text, "late");
    EXPECT_EQ(markers[1].kind, sessions::MarkerKind::dropped);
    EXPECT_EQ(markers[1].length, 0);
}

TEST(LossMarkers, WhatHasNoPlaceStandsAtTheStart) {
    HandOff handOff = handOffWithTracks();
    PlacedLoss whole;
    whole.plain = "whole";
    addLoss(handOff, Severity::informational, whole);
    exchange::ExportLoss pan;
    pan.track = 1;
    pan.sentence = "pan";
    const auto markers = lossMarkers(handOff, {pan}, planAt48000());
    ASSERT_THAT(markers, SizeIs(2));
    EXPECT_EQ(markers[0].text, "whole");
    EXPECT_FALSE(markers[0].track.has_value());
    EXPECT_EQ(markers[1].text, "pan");
    EXPECT_EQ(markers[1].track, 1U);
    EXPECT_EQ(markers[1].position, 0);
    EXPECT_EQ(markers[1].length, 0);
}

TEST(LossMarkers, OfAClipNameItAndWhatIsUnheardIsAChange) {
    HandOff handOff = handOffWithTracks();
    handOff.timeline.events.emplace_back();
    handOff.timeline.events.back().clipName = "Anna";
    exchange::ExportLoss loss;
    loss.event = 0;
    loss.isLeftOut = false;
    loss.sentence = "It is shorter.";
    const auto markers = lossMarkers(handOff, {loss}, planAt48000());
    ASSERT_THAT(markers, SizeIs(1));
    EXPECT_EQ(markers[0].event, 0U);
    EXPECT_EQ(markers[0].text, "Anna: It is shorter.");
    EXPECT_EQ(markers[0].kind, sessions::MarkerKind::changed);
}

TEST(LossMarkers, OfAClipWithoutANameNameItsMasterMob) {
    HandOff handOff = handOffWithTracks();
    handOff.timeline.events.emplace_back();
    handOff.masterMobs = {{.mobID = "m", .name = "Anna"}};
    handOff.masterMobOfEvents = {0};
    exchange::ExportLoss loss;
    loss.event = 0;
    loss.sentence = "It is shorter.";
    EXPECT_EQ(lossMarkers(handOff, {loss}, planAt48000()).at(0).text, "Anna: It is shorter.");
}

TEST(LossMarkers, StayWithinTheSession) {
    HandOff handOff = handOffWithTracks();
    PlacedLoss loss;
    loss.start = AAFRational(-5);
    loss.duration = AAFRational(INT64_MAX);
    addLoss(handOff, Severity::informational, loss);
    const auto markers = lossMarkers(handOff, {}, planAt48000());
    ASSERT_THAT(markers, SizeIs(1));
    EXPECT_EQ(markers[0].position, 0);
    EXPECT_EQ(markers[0].length, exchange::mostSamples);
}

}  // namespace
}  // namespace trellant::testing
