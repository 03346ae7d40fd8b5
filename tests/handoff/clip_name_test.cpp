// SPDX-License-Identifier: Apache-2.0
#include <trellant/handoff/clip_name.h>

#include <gtest/gtest.h>

#include <optional>

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
