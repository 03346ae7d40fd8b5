// SPDX-License-Identifier: Apache-2.0
#include <trellant/handoff/clip_name.h>

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace trellant {
namespace {

/// Two master mobs, one without a name; a clip for each name that is given.
HandOff handOffOf(const std::vector<std::optional<std::string>>& names,
                  const std::vector<std::int64_t>& mobs) {
    HandOff handOff;
    for (const auto& name : names) {
        AAFClipEvent event;
        event.id = "clip " + std::to_string(handOff.timeline.events.size());
        event.clipName = name;
        handOff.timeline.events.push_back(event);
    }
    handOff.masterMobs = {{.mobID = "a", .name = "Anna"}, {.mobID = "b"}};
    handOff.masterMobOfEvents = mobs;
    return handOff;
}

TEST(ClipName, IsTheClipsOwnWhereItHasOne) {
    const HandOff handOff = handOffOf({"Take 1"}, {0});
    EXPECT_EQ(*clipName(handOff, 0).text, "Take 1");
    EXPECT_FALSE(clipName(handOff, 0).isOfMasterMob);
    EXPECT_EQ(*masterMobName(handOff, 0), "Anna");
}

TEST(ClipName, IsThatOfTheMasterMobForWantOfOne) {
    const HandOff handOff = handOffOf({std::nullopt, ""}, {0, 0});
    for (const std::size_t position : {0U, 1U}) {
        EXPECT_EQ(*clipName(handOff, position).text, "Anna");
        EXPECT_TRUE(clipName(handOff, position).isOfMasterMob);
    }
}

TEST(ClipName, IsNoneWhereNothingIsNamed) {
    // No name, no master mob, and places that no list has.
    const HandOff handOff =
        handOffOf({std::nullopt, std::nullopt, std::nullopt, std::nullopt}, {1, -1, 2});
    for (const std::size_t position : {0U, 1U, 2U, 3U}) {
        EXPECT_EQ(clipName(handOff, position).text, nullptr);
        EXPECT_FALSE(clipName(handOff, position).isOfMasterMob);
    }
}

TEST(ClipName, IsTheMasterMobsOfTheseClips) {
    const HandOff handOff = handOffOf({"Take 1", std::nullopt, "", std::nullopt}, {0, 0, 0, 1});
    EXPECT_EQ(namesByMasterMob(handOff),
              (std::map<std::size_t, std::string>{{1, "Anna"}, {2, "Anna"}}));
}

TEST(ClipName, OfALossIsThatOfItsClip) {
    AAFWorkerProtocol::Result answer;
    // A clip without a name, one with, one whose id names no object, and a loss of each; the last
    // loss is of an object that no clip is left of.
    const std::vector<std::pair<std::string, std::optional<std::string>>> clips{
        {"omf-event-56-3", std::nullopt}, {"omf-event-57-0", "Take 1"}, {"event", std::nullopt}};
    for (const auto& [id, name] : clips) {
        AAFClipEvent event;
        event.id = id;
        event.clipName = name;
        answer.timeline.events.push_back(event);
    }
    AAFWorkerExtensions::LossPlaces places;
    for (const std::int64_t object : {56, 57, 0, 58}) {
        answer.timeline.unsupportedFeatures.emplace_back();
        AAFWorkerExtensions::LossPlace place;
        place.clipObject = object;
        place.clipName = object == 57 ? std::optional<std::string>("Take 1") : std::nullopt;
        places.places.push_back(place);
    }
    AAFWorkerExtensions extensions;
    extensions.lossPlaces = places;
    extensions.masterMobs = AAFWorkerExtensions::MasterMobs{
        .masterMobs = {{.mobID = "a", .name = "Anna"}}, .ofEvents = {0, 0, 0}};
    answer.extensions = extensions;
    const HandOff handOff = trellant::handOffOf(answer);
    ASSERT_EQ(handOff.losses.size(), 4U);
    EXPECT_EQ(handOff.losses[0].clipName, "Anna");
    EXPECT_TRUE(handOff.losses[0].isClipNamedByMasterMob);
    EXPECT_EQ(handOff.losses[1].clipName, "Take 1");
    EXPECT_FALSE(handOff.losses[1].isClipNamedByMasterMob);
    EXPECT_EQ(handOff.losses[2].clipName, std::nullopt);
    EXPECT_EQ(handOff.losses[3].clipName, std::nullopt);
}

TEST(ClipName, StaysWithItsClipWhereOthersAreTakenAway) {
    HandOff handOff = handOffOf({std::nullopt, std::nullopt}, {-1, 0});
    auto& timeline = handOff.timeline;
    AAFSourceEssence essence;
    essence.id = "e";
    essence.sampleRate = AAFRational(48'000);
    essence.channelCount = 1;
    timeline.essences = {essence};
    AAFTrackState track;
    track.id = "t";
    timeline.tracks = {track};
    for (AAFClipEvent& event : timeline.events) {
        event.trackID = "t";
        event.essenceID = "e";
        event.duration = AAFRational(1);
    }
    // A clip of a source that is not there cannot stay.
    timeline.events[0].essenceID = "nothing";
    makeUsable(handOff);
    ASSERT_EQ(handOff.timeline.events.size(), 1U);
    EXPECT_EQ(*clipName(handOff, 0).text, "Anna");
}

}  // namespace
}  // namespace trellant
