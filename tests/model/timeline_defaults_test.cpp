// SPDX-License-Identifier: Apache-2.0
// What a record holds where its maker says nothing: nothing that would be heard or counted.
#include <trellant/model/timeline.h>

#include <gtest/gtest.h>

namespace trellant {
namespace {

TEST(TimelineDefaults, ATrackLeavesTheSoundAsItIs) {
    const AAFTrackState track;
    EXPECT_EQ(track.index, 0);
    EXPECT_EQ(track.fixedGain, 1);
    EXPECT_FALSE(track.gainAutomation || track.fixedPan || track.panAutomation);
    EXPECT_FALSE(track.muted || track.solo);
}

TEST(TimelineDefaults, AnEventLeavesTheSoundAsItIs) {
    const AAFClipEvent event;
    EXPECT_EQ(event.fixedClipGain, 1);
    EXPECT_FALSE(event.clipMuted || event.clipGainAutomation || event.fadeIn || event.fadeOut);
    EXPECT_EQ(event.timelineStart, AAFRational(0));
    EXPECT_EQ(event.duration, AAFRational(0));
    EXPECT_EQ(event.sourceStartSample, 0);
    EXPECT_FALSE(event.sourceChannel);
    EXPECT_EQ(event.channelRole, AAFChannelRole::mono);
}

TEST(TimelineDefaults, WhatHostsFillIsAbsentOrUndecided) {
    const AAFClipEvent event;
    EXPECT_FALSE(event.semanticDecision || event.exportSourceEventIDs ||
                 event.exportTrackNameOrigin);
    EXPECT_EQ(AAFSemanticDecision().role, AAFStemRole::unclassified);
    EXPECT_EQ(AAFSemanticDecision().confidence, 0);
    EXPECT_EQ(AAFClipEvent::ExportTrackNameOrigin().schemaVersion, 0);
    EXPECT_EQ(AAFClipEvent::ExportTrackNameOrigin().role, AAFStemRole::unclassified);
}

TEST(TimelineDefaults, AFadeIsALineWithoutALength) {
    const AAFFade fade;
    EXPECT_EQ(fade.direction, AAFFade::Direction::fadeIn);
    EXPECT_EQ(fade.duration, AAFRational(0));
    EXPECT_EQ(fade.curve, AAFAutomationInterpolation::linear());
    EXPECT_TRUE(fade.points.empty());
    EXPECT_FALSE(fade.reversesPointTime);
    EXPECT_EQ(AAFAutomationPoint().value, 0);
}

TEST(TimelineDefaults, AnEssenceSaysNothingOfItsMedia) {
    const AAFSourceEssence essence;
    EXPECT_FALSE(essence.embedded);
    EXPECT_EQ(essence.sampleRate, AAFRational(0));
    EXPECT_EQ(essence.channelCount, 0);
    EXPECT_FALSE(essence.fileURL || essence.bitDepth || essence.codec || essence.originalPath);
}

TEST(TimelineDefaults, ARateIs25FramesAndALabelMidnight) {
    EXPECT_EQ(AAFTimecodeRate(), AAFTimecodeRate::fps25());
    EXPECT_EQ(AAFTimecodeAddress().description(), "00:00:00:00");
    EXPECT_EQ(AAFRational().denominator(), 1);
}

}  // namespace
}  // namespace trellant
