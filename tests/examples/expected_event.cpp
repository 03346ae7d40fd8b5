// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <algorithm>
#include <trellant_testing/expected_event.h>

namespace trellant::testing {

namespace {

template <class Records>
auto withID(const Records& records, const std::string& id) {
    return std::find_if(records.begin(), records.end(),
                        [&](const auto& record) { return record.id == id; });
}

void expectFade(const Boxed<AAFFade>& fade, const std::optional<ExpectedFade>& expected,
                AAFFade::Direction direction) {
    ASSERT_EQ(static_cast<bool>(fade), expected.has_value());
    if (expected) {
        EXPECT_EQ(fade->direction, direction);
        EXPECT_EQ(fade->duration, expected->duration);
        EXPECT_EQ(fade->curve, expected->curve);
        EXPECT_TRUE(fade->points.empty());
        EXPECT_FALSE(fade->reversesPointTime.has_value());
    }
}

void expectEvent(const AAFTimeline& timeline, const AAFClipEvent& event,
                 const ExpectedEvent& expected) {
    const auto track = withID(timeline.tracks, event.trackID);
    const auto essence = withID(timeline.essences, event.essenceID);
    ASSERT_TRUE(track != timeline.tracks.end());
    ASSERT_TRUE(essence != timeline.essences.end());
    EXPECT_EQ(track->name, expected.track);
    EXPECT_EQ(event.clipName, expected.clip);
    EXPECT_EQ(essence->sourceName, expected.source);
    EXPECT_EQ(event.timelineStart, expected.start);
    EXPECT_EQ(event.duration, expected.duration);
    EXPECT_EQ(event.sourceStartSample, expected.sourceStartSample);
    EXPECT_EQ(event.sourceChannel, expected.channel);
    EXPECT_EQ(event.channelRole, expected.role);
    EXPECT_EQ(event.fixedClipGain, expected.gain);
    expectFade(event.fadeIn, expected.fadeIn, AAFFade::Direction::fadeIn);
    expectFade(event.fadeOut, expected.fadeOut, AAFFade::Direction::fadeOut);
    ASSERT_EQ(static_cast<bool>(event.clipGainAutomation), expected.gainAutomation.has_value());
    if (expected.gainAutomation) {
        EXPECT_EQ(*event.clipGainAutomation, *expected.gainAutomation);
    }
    EXPECT_FALSE(event.clipMuted);
    EXPECT_FALSE(static_cast<bool>(event.semanticDecision));
    EXPECT_FALSE(static_cast<bool>(event.exportSourceEventIDs));
    EXPECT_FALSE(static_cast<bool>(event.exportTrackNameOrigin));
}

}  // namespace

void expectEvents(const AAFTimeline& timeline, const std::vector<ExpectedEvent>& expected) {
    ASSERT_EQ(timeline.events.size(), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index) {
        SCOPED_TRACE("event " + std::to_string(index));
        expectEvent(timeline, timeline.events[index], expected[index]);
    }
}

void expectTracks(const AAFTimeline& timeline, const std::vector<ExpectedTrack>& expected) {
    ASSERT_EQ(timeline.tracks.size(), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index) {
        SCOPED_TRACE("track " + std::to_string(index));
        const AAFTrackState& track = timeline.tracks[index];
        EXPECT_EQ(track.index, expected[index].index);
        EXPECT_EQ(track.name, expected[index].name);
        EXPECT_EQ(track.fixedPan, expected[index].pan);
        EXPECT_EQ(track.fixedGain, 1);
        EXPECT_FALSE(track.gainAutomation.has_value());
        EXPECT_FALSE(track.panAutomation.has_value());
        EXPECT_FALSE(track.muted);
        EXPECT_FALSE(track.solo);
    }
}

}  // namespace trellant::testing
