// SPDX-License-Identifier: Apache-2.0
#include "timeline_data.h"

#include "hand_offs.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace trellant::page {

namespace {

using Json = nlohmann::json;
using Interpolation = AAFAutomationInterpolation;

Json dataOf(const HandOff& handOff) {
    StringSink sink;
    writeTimelineData({.handOff = handOff, .searchedFolders = {"Disk\n"}}, Sources(handOff), sink);
    return Json::parse(sink.text);
}

HandOff oneClip(const AAFRational& start, const AAFRational& duration) {
    HandOff handOff = emptyHandOff();
    addTrack(handOff, "A");
    addSource(handOff, "a.wav");
    addClip(handOff, "Take", "A", "a.wav", start, duration);
    return handOff;
}

TEST(TimelineData, ClockCountsFramesToTheTimelinesZero) {
    // 01:00:00:00 at 25 frames a second is frame 90,000.
    EXPECT_EQ(dataOf(emptyHandOff())["clock"],
              Json::parse(R"({"rate":[25,1],"nominal":25,"drop":false,"zero":90000})"));
}

TEST(TimelineData, ClockCountsFramesWhereLabelsRoundTheirRate) {
    HandOff handOff = emptyHandOff();
    const AAFTimecodeRate rate(AAFRational(30), 30, false);
    handOff.timeline.clock = {AAFRational(30'000, 1001), rate,
                              AAFTimecodeAddress(1, 0, 0, 0, rate)};
    // 01:00:00:00 is frame 108,000.
    EXPECT_EQ(dataOf(handOff)["clock"],
              Json::parse(R"({"rate":[30000,1001],"nominal":30,"drop":false,"zero":108000})"));
}

TEST(TimelineData, WholeUnitsAreNumbers) {
    const Json data = dataOf(oneClip(AAFRational(2), AAFRational(7, 25)));
    EXPECT_EQ(data["unit"], Json::parse("[1,25]"));
    // Two seconds are 50 frames.
    EXPECT_EQ(data["clips"]["start"], Json::parse("[50]"));
    EXPECT_EQ(data["clips"]["length"], Json::parse("[7]"));
}

TEST(TimelineData, WhatIsNoWholeUnitIsAnExactFraction) {
    const Json data = dataOf(oneClip(AAFRational(1, 48'000), AAFRational(1, 3)));
    EXPECT_EQ(data["clips"]["start"], Json::parse(R"(["1/48000"])"));
    EXPECT_EQ(data["clips"]["length"], Json::parse(R"(["1/3"])"));
}

TEST(TimelineData, WhatOverflowsInUnitsIsAFractionToo) {
    // In units of 1/25 s it has more than 64 bits.
    const AAFRational late(9'000'000'000'000'000'000);
    const Json data = dataOf(oneClip(late, AAFRational(1)));
    EXPECT_EQ(data["clips"]["start"], Json::parse(R"(["9000000000000000000"])"));
}

TEST(TimelineData, ClipWithoutTrackOrSourceSaysSo) {
    HandOff handOff = oneClip(AAFRational(0), AAFRational(1));
    handOff.timeline.events[0].trackID = "nowhere";
    handOff.timeline.events[0].essenceID = "nothing";
    const Json data = dataOf(handOff);
    EXPECT_EQ(data["clips"]["track"], Json::parse("[-1]"));
    EXPECT_EQ(data["clips"]["source"], Json::parse("[-1]"));
}

TEST(TimelineData, FadesSayLengthCurveAndPoints) {
    HandOff handOff = oneClip(AAFRational(0), AAFRational(4));
    AAFFade fade = fadeOf(AAFFade::Direction::fadeIn, AAFRational(1), Interpolation::logarithmic());
    fade.points = {{AAFRational(0), 0}, {AAFRational(1, 4), 0.5}, {AAFRational(1), 1}};
    fade.reversesPointTime = true;
    handOff.timeline.events[0].fadeIn = fade;
    handOff.timeline.events[0].fadeOut =
        fadeOf(AAFFade::Direction::fadeOut, AAFRational(2), Interpolation::power());
    const Json data = dataOf(handOff);
    EXPECT_EQ(data["clips"]["fadeIn"], Json::parse("[0,25,3,0,1]"));
    EXPECT_EQ(data["clips"]["fadeOut"], Json::parse("[0,50,2,-1,0]"));
    EXPECT_EQ(data["envelopes"], Json::parse("[[3,[0,0,0.25,0.5,1,1]]]"));
}

TEST(TimelineData, SharedPointsAreWrittenOnce) {
    HandOff handOff = oneClip(AAFRational(0), AAFRational(4));
    addClip(handOff, "Other", "A", "a.wav", AAFRational(4), AAFRational(4));
    const Boxed<AAFAutomationEnvelope> shared =
        AAFAutomationEnvelope{Interpolation::constant(), {{AAFRational(0), 0.5}}};
    handOff.timeline.events[0].clipGainAutomation = shared;
    handOff.timeline.events[1].clipGainAutomation = shared;
    const Json data = dataOf(handOff);
    EXPECT_EQ(data["clips"]["automation"], Json::parse("[0,0,1,0]"));
    EXPECT_EQ(data["envelopes"], Json::parse("[[1,[0,0.5]]]"));
}

TEST(TimelineData, TracksSayWhatTheMixHas) {
    HandOff handOff = emptyHandOff();
    AAFTrackState& track = addTrack(handOff, "A");
    track.fixedGain = 0.5;
    track.fixedPan = 0.25;
    track.muted = true;
    addTrack(handOff, "B").solo = true;
    EXPECT_EQ(dataOf(handOff)["tracks"],
              Json::parse(R"([{"gain":0.5,"pan":0.25,"muted":true,"solo":false},
                              {"gain":1,"muted":false,"solo":true}])"));
}

TEST(TimelineData, LossesSayWhereTheyAre) {
    HandOff handOff = oneClip(AAFRational(0), AAFRational(4));
    addLoss(handOff, AAFUnsupportedFeature::Severity::informational, "gone", "A", AAFRational(1),
            AAFRational(2));
    addLoss(handOff, AAFUnsupportedFeature::Severity::renderAffecting, "other", "B", AAFRational(1),
            AAFRational(2));
    handOff.losses[1].start.reset();
    handOff.losses[1].duration.reset();
    EXPECT_EQ(dataOf(handOff)["losses"],
              Json::parse(R"({"track":[0,-1],"start":[25,-1],"length":[50,-1],"dropped":[1,0]})"));
}

TEST(TimelineData, FoldersThatWereSearchedAreTold) {
    EXPECT_EQ(dataOf(emptyHandOff())["searched"], Json::parse(R"(["Disk\\u000a"])"));
}

}  // namespace

}  // namespace trellant::page
