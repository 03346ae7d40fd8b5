// SPDX-License-Identifier: Apache-2.0
#include "timelines.h"

#include <trellant/exchange/carried_part.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace trellant::exchange {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using Curve = AAFAutomationInterpolation;
using Severity = AAFUnsupportedFeature::Severity;
using enum AAFFade::Direction;

AAFRational seconds(std::int64_t numerator, std::int64_t denominator = 1) {
    return AAFRational(numerator, denominator);
}

AAFTimeline plainTimeline() {
    AAFTimeline timeline = emptyTimeline();
    addTrack(timeline, "A1");
    addSource(timeline, "Anna");
    addClip(timeline, "A1", "Anna", seconds(1), seconds(2));
    return timeline;
}

CarriedPart carried(const AAFTimeline& timeline, ExportFormat format) {
    return carriedPart(planSession(timeline, withFiles(timeline)), timeline, format);
}

std::vector<Feature> featuresOf(const CarriedPart& part) {
    std::vector<Feature> features;
    for (const ExportLoss& loss : part.losses) {
        features.push_back(loss.feature);
    }
    return features;
}

const PlannedClip& onlyClip(const CarriedPart& part) {
    return part.plan.tracks.at(0).lanes.at(0).clips.at(0);
}

constexpr std::array<ExportFormat, exportFormatCount> allFormats{
    ExportFormat::aaf,    ExportFormat::otio,       ExportFormat::otioz,
    ExportFormat::reaper, ExportFormat::dawproject, ExportFormat::markers};

TEST(CarriedPart, APlainSessionLosesNothingInAnyFormat) {
    const AAFTimeline timeline = plainTimeline();
    const PlannedSession planned = planSession(timeline, withFiles(timeline));
    for (const ExportFormat format : allFormats) {
        const CarriedPart part = carried(timeline, format);
        EXPECT_THAT(part.losses, IsEmpty()) << formatWord(format);
        EXPECT_EQ(part.plan, planned.plan) << formatWord(format);
    }
}

TEST(LossesOfPlan, AreOfTheWholeFirstThenOfClips) {
    AAFTimeline timeline = emptyTimeline();
    addTrack(timeline, "A");
    addSource(timeline, "a.wav");
    addClip(timeline, "A", "a.wav", seconds(-2), seconds(1));
    // The end is no sample: 48,000 / 7 is 6,857 and 1/7.
    addClip(timeline, "A", "a.wav", seconds(0), seconds(1, 7));
    const PlannedSession session = planSession(timeline, withFiles(timeline));
    const std::vector<ExportLoss> losses = lossesOfPlan(session, timeline);
    ASSERT_EQ(losses.size(), 2U);
    EXPECT_FALSE(losses[0].track.has_value());
    EXPECT_FALSE(losses[0].isLeftOut);
    EXPECT_EQ(losses[1].track, 0U);
    EXPECT_EQ(losses[1].event, 0U);
    EXPECT_EQ(losses[1].start, seconds(-2));
    EXPECT_TRUE(losses[1].isLeftOut);
}

TEST(CarriedPart, WhatIsLostIsTakenAwayAndOnRecordWithItsPlace) {
    AAFTimeline timeline = plainTimeline();
    timeline.events[0].fixedClipGain = 0.5;
    const CarriedPart part = carried(timeline, ExportFormat::markers);
    EXPECT_EQ(onlyClip(part).gain, 1);
    ASSERT_THAT(part.losses, SizeIs(1));
    const ExportLoss& loss = part.losses[0];
    EXPECT_EQ(loss.feature, Feature::clipGain);
    EXPECT_EQ(loss.severity, Severity::renderAffecting);
    EXPECT_EQ(loss.track, 0U);
    EXPECT_EQ(loss.event, 0U);
    EXPECT_EQ(loss.start, seconds(1));
    EXPECT_EQ(loss.duration, seconds(2));
    EXPECT_EQ(loss.sentence, "The clip's gain is left out: it plays at the level of its source.");
    EXPECT_EQ(loss.technical, "clip gain (0.5): not in markers");
}

TEST(CarriedPart, WhatIsMetadataStaysAndIsOnRecord) {
    AAFTimeline timeline = plainTimeline();
    timeline.tracks[0].fixedPan = 0.25;
    const CarriedPart part = carried(timeline, ExportFormat::otio);
    EXPECT_EQ(part.plan.tracks[0].pan, 0.25);
    ASSERT_THAT(part.losses, SizeIs(1));
    EXPECT_EQ(part.losses[0].sentence,
              "The track's pan is kept as a note only: other tools do not act on it.");
    EXPECT_EQ(part.losses[0].technical, "pan (0.25): only metadata in otio");
    EXPECT_FALSE(part.losses[0].event.has_value());
}

TEST(CarriedPart, AnInvertedSignalIsWrittenUprightWhereGainsHaveNoSign) {
    AAFTimeline timeline = plainTimeline();
    timeline.events[0].fixedClipGain = -0.5;
    EXPECT_EQ(onlyClip(carried(timeline, ExportFormat::aaf)).gain, 0.5);
    EXPECT_EQ(onlyClip(carried(timeline, ExportFormat::dawproject)).gain, 0.5);
    EXPECT_EQ(onlyClip(carried(timeline, ExportFormat::reaper)).gain, -0.5);
    const CarriedPart part = carried(timeline, ExportFormat::aaf);
    ASSERT_THAT(part.losses, SizeIs(1));
    EXPECT_EQ(part.losses[0].technical, "clip gain: -0.5 is written to aaf as 0.5");
}

TEST(CarriedPart, AGainBeyondAafIsTheLargestThatItHolds) {
    AAFTimeline timeline = plainTimeline();
    timeline.events[0].fixedClipGain = 1e300;
    const CarriedPart part = carried(timeline, ExportFormat::aaf);
    EXPECT_EQ(onlyClip(part).gain, 2'147'483'647.0);
    EXPECT_THAT(featuresOf(part), ElementsAre(Feature::clipGain));
}

TEST(CarriedPart, APanBesideTheStageIsMovedToItsEdge) {
    AAFTimeline timeline = plainTimeline();
    timeline.tracks[0].fixedPan = 1.5;
    const CarriedPart part = carried(timeline, ExportFormat::reaper);
    EXPECT_EQ(part.plan.tracks[0].pan, 1.0);
    EXPECT_THAT(featuresOf(part), ElementsAre(Feature::trackPan));
}

TEST(CarriedPart, CurvesThatAFormatDoesNotKnowBecomeLinear) {
    AAFTimeline timeline = plainTimeline();
    timeline.events[0].fadeIn =
        fadeOf(fadeIn, seconds(1, 2), Curve::unsupported("OMF Fade Type 7"));
    timeline.events[0].clipGainAutomation =
        AAFAutomationEnvelope{Curve::power(), {{seconds(0), 1}, {seconds(1), 0.5}}};
    const CarriedPart aaf = carried(timeline, ExportFormat::aaf);
    EXPECT_EQ(onlyClip(aaf).fadeIn->curve, Curve::linear());
    EXPECT_EQ(onlyClip(aaf).gainAutomation->interpolation, Curve::power());
    EXPECT_THAT(featuresOf(aaf), ElementsAre(Feature::fadeCurves));
    EXPECT_EQ(aaf.losses[0].technical,
              "curves of fades: OMF Fade Type 7 is written to aaf as linear");
    const CarriedPart reaper = carried(timeline, ExportFormat::reaper);
    EXPECT_EQ(onlyClip(reaper).gainAutomation->interpolation, Curve::linear());
    EXPECT_THAT(featuresOf(reaper), ElementsAre(Feature::automationCurves, Feature::fadeCurves));
}

TEST(CarriedPart, TheCurveOfEveryFadeIsOnRecordInDawProjectWhichHasNone) {
    AAFTimeline timeline = plainTimeline();
    timeline.events[0].fadeIn = fadeOf(fadeIn, seconds(1, 2), Curve::logarithmic());
    timeline.events[0].fadeOut = fadeOf(fadeOut, seconds(1, 2));
    const CarriedPart part = carried(timeline, ExportFormat::dawproject);
    ASSERT_THAT(featuresOf(part), ElementsAre(Feature::fadeCurves, Feature::fadeCurves));
    EXPECT_EQ(part.losses[0].sentence,
              "The curve of the clip's fade-in is left out: the tool takes its own.");
    EXPECT_EQ(part.losses[0].technical, "curves of fades (logarithmic): not in dawproject");
    EXPECT_EQ(part.losses[1].sentence,
              "The curve of the clip's fade-out is left out: the tool takes its own.");
    EXPECT_EQ(part.losses[1].technical, "curves of fades (linear): not in dawproject");
    EXPECT_EQ(onlyClip(part).fadeIn->length, 24'000);
    EXPECT_EQ(onlyClip(part).fadeIn->curve, Curve::linear());
}

TEST(CarriedPart, FadesOfOneClipDoNotOverlapInAaf) {
    AAFTimeline timeline = plainTimeline();
    timeline.events[0].fadeIn = fadeOf(fadeIn, seconds(3, 2));
    timeline.events[0].fadeOut = fadeOf(fadeOut, seconds(1));
    const CarriedPart aaf = carried(timeline, ExportFormat::aaf);
    EXPECT_EQ(onlyClip(aaf).fadeIn->length, 72'000);
    EXPECT_EQ(onlyClip(aaf).fadeOut->length, 24'000);
    EXPECT_THAT(featuresOf(aaf), ElementsAre(Feature::overlappingFades));
    const CarriedPart reaper = carried(timeline, ExportFormat::reaper);
    EXPECT_EQ(onlyClip(reaper).fadeOut->length, 48'000);
    EXPECT_THAT(reaper.losses, IsEmpty());
}

TEST(CarriedPart, AFadeOutThatLiesInTheFadeInIsGoneInAaf) {
    AAFTimeline timeline = plainTimeline();
    timeline.events[0].fadeIn = fadeOf(fadeIn, seconds(2));
    timeline.events[0].fadeOut = fadeOf(fadeOut, seconds(1));
    const CarriedPart aaf = carried(timeline, ExportFormat::aaf);
    EXPECT_EQ(onlyClip(aaf).fadeIn->length, 96'000);
    EXPECT_FALSE(onlyClip(aaf).fadeOut.has_value());
}

TEST(CarriedPart, ACrossfadeIsCarriedWhereItsFadesAloneAreNot) {
    AAFTimeline timeline = plainTimeline();
    timeline.events[0].fadeOut = fadeOf(fadeOut, seconds(1, 10));
    addClip(timeline, "A1", "Anna", seconds(29, 10), seconds(2)).fadeIn =
        fadeOf(fadeIn, seconds(1, 10));
    timeline.events[1].fadeOut = fadeOf(fadeOut, seconds(1, 10));
    const CarriedPart part = carried(timeline, ExportFormat::otio);
    ASSERT_THAT(part.plan.tracks[0].lanes, SizeIs(1));
    EXPECT_TRUE(part.plan.tracks[0].lanes[0].clips[1].crossfadesIn);
    ASSERT_THAT(featuresOf(part), ElementsAre(Feature::fadeLengths));
    EXPECT_EQ(part.losses[0].event, 1U);
    EXPECT_EQ(part.losses[0].technical, "lengths of fades (fade-out): only metadata in otio");
}

TEST(CarriedPart, AFadeIntoAClipThatCrossfadesLaterIsNoCrossfade) {
    AAFTimeline timeline = plainTimeline();
    // Behind one another, then overlapping by a tenth of a second.
    timeline.events[0].fadeOut = fadeOf(fadeOut, seconds(1, 10));
    addClip(timeline, "A1", "Anna", seconds(3), seconds(2)).fadeOut =
        fadeOf(fadeOut, seconds(1, 10));
    addClip(timeline, "A1", "Anna", seconds(49, 10), seconds(2)).fadeIn =
        fadeOf(fadeIn, seconds(1, 10));
    const CarriedPart part = carried(timeline, ExportFormat::otio);
    ASSERT_THAT(part.plan.tracks[0].lanes, SizeIs(1));
    ASSERT_THAT(featuresOf(part), ElementsAre(Feature::fadeLengths));
    EXPECT_EQ(part.losses[0].event, 0U);
    EXPECT_EQ(part.losses[0].sentence,
              "The clip's fade-out is kept as a note only: other tools do not act on it.");
}

TEST(CarriedPart, ADrawnFadeKeepsItsCurve) {
    AAFTimeline timeline = plainTimeline();
    AAFFade drawn = fadeOf(fadeIn, seconds(1), Curve::power());
    drawn.points = {{seconds(0), 0}, {seconds(1), 1}};
    timeline.events[0].fadeIn = drawn;
    const CarriedPart part = carried(timeline, ExportFormat::aaf);
    EXPECT_THAT(onlyClip(part).fadeIn->shape, IsEmpty());
    EXPECT_EQ(onlyClip(part).fadeIn->curve, Curve::power());
    EXPECT_THAT(featuresOf(part), ElementsAre(Feature::fadeShapes));
}

TEST(CarriedPart, AllChannelsOfAClipAreItsFirstInAaf) {
    AAFTimeline timeline = plainTimeline();
    timeline.essences[0].channelCount = 2;
    const CarriedPart aaf = carried(timeline, ExportFormat::aaf);
    EXPECT_EQ(onlyClip(aaf).channel, 0);
    EXPECT_THAT(featuresOf(aaf), ElementsAre(Feature::severalChannels));
    EXPECT_THAT(carried(timeline, ExportFormat::reaper).losses, IsEmpty());
}

TEST(CarriedPart, ReaperChoosesAmongTheFirstSixtyFourChannels) {
    AAFTimeline timeline = plainTimeline();
    timeline.essences[0].channelCount = 100;
    timeline.events[0].sourceChannel = 63;
    EXPECT_THAT(carried(timeline, ExportFormat::reaper).losses, IsEmpty());
    timeline.events[0].sourceChannel = 64;
    const CarriedPart part = carried(timeline, ExportFormat::reaper);
    EXPECT_FALSE(onlyClip(part).channel.has_value());
    EXPECT_THAT(featuresOf(part), ElementsAre(Feature::channelOfSeveral));
}

TEST(CarriedPart, ControlCharactersInNamesAreReplacedAndOnRecord) {
    AAFTimeline timeline = plainTimeline();
    timeline.tracks[0].name = "A\n1";
    timeline.events[0].clipName =
        "a\xC2\x9B"
        "b\x7F"
        "c\xEF\xBF\xBF";
    const CarriedPart part = carried(timeline, ExportFormat::dawproject);
    EXPECT_EQ(part.plan.tracks[0].name, "A 1");
    EXPECT_EQ(part.plan.tracks[0].lanes[0].name, "A 1");
    EXPECT_EQ(onlyClip(part).name, "a b c\xEF\xBF\xBD");
    EXPECT_THAT(featuresOf(part), ElementsAre(Feature::trackNames, Feature::clipNames));
    EXPECT_EQ(part.losses[0].severity, Severity::informational);
    EXPECT_EQ(part.losses[0].technical,
              "names of tracks: A\\u000a1 is written to dawproject as A 1");
    EXPECT_EQ(carried(timeline, ExportFormat::otio).plan.tracks[0].name, "A\n1");
}

TEST(CarriedPart, AControlCharacterIsNothingInAaf) {
    AAFTimeline timeline = plainTimeline();
    timeline.events[0].clipName =
        "a\xC2\x9B"
        "b\n";
    timeline.essences[0].sourceName = "An\tna";
    const CarriedPart part = carried(timeline, ExportFormat::aaf);
    EXPECT_EQ(onlyClip(part).name, "ab");
    EXPECT_EQ(part.plan.media.at(0).name, "Anna");
    EXPECT_THAT(featuresOf(part), ElementsAre(Feature::sourceNames, Feature::clipNames));
}

TEST(CarriedPart, AProjectQuotesANameByTheKindOfQuoteThatIsNotInIt) {
    AAFTimeline timeline = plainTimeline();
    timeline.events[0].clipName = "\"a\" 'b' `c`";
    const CarriedPart part = carried(timeline, ExportFormat::reaper);
    EXPECT_EQ(onlyClip(part).name, "\"a\" 'b' 'c'");
    EXPECT_THAT(featuresOf(part), ElementsAre(Feature::clipNames));
}

TEST(CarriedPart, AnAutomatedPanIsTheOnlyOneWhereBothAreNot) {
    AAFTimeline timeline = plainTimeline();
    timeline.tracks[0].fixedPan = 0.25;
    timeline.tracks[0].panAutomation = AAFAutomationEnvelope{{}, {{seconds(0), 1}}};
    const CarriedPart part = carried(timeline, ExportFormat::aaf);
    EXPECT_FALSE(part.plan.tracks[0].pan.has_value());
    EXPECT_TRUE(part.plan.tracks[0].panAutomation.has_value());
    EXPECT_THAT(featuresOf(part), ElementsAre(Feature::trackPan));
}

TEST(CarriedPart, ALongNameIsCutForAafBetweenCharacters) {
    AAFTimeline timeline = plainTimeline();
    // Each is two units: 16,383 of them fit.
    std::string name;
    for (int i = 0; i < 20'000; ++i) {
        name += "\xF0\x9F\x8E\xB5";
    }
    timeline.events[0].clipName = name;
    const CarriedPart part = carried(timeline, ExportFormat::aaf);
    EXPECT_EQ(onlyClip(part).name.size(), 4U * 16'383U);
    EXPECT_THAT(featuresOf(part), ElementsAre(Feature::clipNames));
}

TEST(CarriedPart, AReelIsATapeInAafANoteInOtioAndOnRecordElsewhere) {
    const AAFTimeline timeline = plainTimeline();
    PlanRequest request = withFiles(timeline);
    request.reels.emplace("Anna", PlannedReel{.id = "7", .name = "TAPE 7"});
    const PlannedSession planned = planSession(timeline, request);
    ASSERT_TRUE(planned.plan.media.at(0).reel.has_value());
    EXPECT_EQ(planned.plan.media[0].reel->name, "TAPE 7");
    for (const ExportFormat format : allFormats) {
        const CarriedPart part = carriedPart(planned, timeline, format);
        const Carriage how = capability(format, Feature::reels).carriage;
        EXPECT_EQ(part.plan.media[0].reel.has_value(), how != Carriage::lost);
        EXPECT_EQ(part.losses.size(), how == Carriage::carried ? 0U : 1U) << formatWord(format);
    }
    const CarriedPart reaper = carriedPart(planned, timeline, ExportFormat::reaper);
    EXPECT_EQ(reaper.losses.at(0).sentence, "The reel that a source comes from is left out.");
    EXPECT_EQ(reaper.losses[0].severity, Severity::informational);
    EXPECT_EQ(reaper.losses[0].technical, "reels that sources come from (TAPE 7): not in reaper");
}

TEST(CarriedPart, RoundingIsOneRecordOfTheWholeSession) {
    AAFTimeline timeline = plainTimeline();
    timeline.events[0].timelineStart = seconds(1, 7);
    timeline.events[0].duration = seconds(1);
    const CarriedPart part = carried(timeline, ExportFormat::reaper);
    ASSERT_THAT(part.losses, SizeIs(1));
    EXPECT_EQ(part.losses[0].feature, Feature::clipPlaces);
    EXPECT_EQ(part.losses[0].severity, Severity::informational) << "nobody hears half a sample";
    EXPECT_EQ(effectOf(part.losses[0]), LossEffect::changed);
    EXPECT_FALSE(part.losses[0].track.has_value());
    EXPECT_EQ(part.losses[0].sentence,
              "2 edges lie between two samples and are moved to the nearest one.");
    // 48000 / 7 = 6857 1/7.
    EXPECT_EQ(part.losses[0].technical,
              "places and lengths of clips: 2 times are no whole samples at 48000 Hz, the largest "
              "error is 0.14285714285714285 samples");
}

TEST(CarriedPart, SourceStartsAtOtherRatesAreRoundedInAafOnly) {
    AAFTimeline timeline = plainTimeline();
    addSource(timeline, "Ben");
    addClip(timeline, "A1", "Ben", seconds(4), seconds(1));
    timeline.essences[0].sampleRate = seconds(11'025);
    timeline.events[0].sourceStartSample = 5'513;
    EXPECT_THAT(featuresOf(carried(timeline, ExportFormat::aaf)),
                ElementsAre(Feature::sourceStartAtOtherRates));
    EXPECT_THAT(carried(timeline, ExportFormat::reaper).losses, IsEmpty());
    EXPECT_THAT(carried(timeline, ExportFormat::otio).losses, IsEmpty());
}

TEST(CarriedPart, WhatNoSessionHoldsIsOnRecordForEveryFormat) {
    AAFTimeline timeline = plainTimeline();
    addClip(timeline, "A1", "Anna", seconds(5), seconds(0));
    for (const ExportFormat format : allFormats) {
        const CarriedPart part = carried(timeline, format);
        ASSERT_THAT(part.losses, SizeIs(1));
        EXPECT_EQ(part.losses[0].event, 1U);
        EXPECT_EQ(part.losses[0].severity, Severity::informational);
        EXPECT_EQ(part.losses[0].sentence,
                  "The clip lasts for less than half a sample and is left out.");
    }
}

TEST(CarriedPart, RecordsFollowTheSessionThenItsTracksThenTheirClips) {
    AAFTimeline timeline = plainTimeline();
    addTrack(timeline, "A2").fixedGain = 0.5;
    timeline.compositionName = "Reel";
    timeline.events[0].trackID = "A2";
    timeline.events[0].clipMuted = true;
    addClip(timeline, "A1", "Anna", seconds(9), seconds(0));
    const CarriedPart part = carried(timeline, ExportFormat::markers);
    EXPECT_THAT(featuresOf(part), ElementsAre(Feature::sessionName, Feature::clipPlaces,
                                              Feature::trackGain, Feature::clipMute));
}

// For every feature that the table calls lost or metadata in a format, a session that has the value
// leads to a record, and the value is there after it or not.
TEST(CarriedPart, TheTableIsWhatHappens) {
    AAFTimeline timeline = plainTimeline();
    timeline.compositionName = "Reel";
    AAFTrackState& track = timeline.tracks[0];
    track.fixedGain = 0.5;
    track.gainAutomation = AAFAutomationEnvelope{{}, {{seconds(0), 0.5}}};
    track.fixedPan = 0.25;
    track.panAutomation = AAFAutomationEnvelope{{}, {{seconds(0), 0.5}}};
    track.muted = true;
    track.solo = true;
    AAFClipEvent& event = timeline.events[0];
    event.fixedClipGain = 0.5;
    event.clipGainAutomation = AAFAutomationEnvelope{{}, {{seconds(0), 0.5}}};
    event.clipMuted = true;
    event.fadeIn = fadeOf(fadeIn, seconds(1, 2));
    const std::vector<Feature> told{
        Feature::sessionName,        Feature::trackGain,          Feature::trackGainAutomation,
        Feature::trackPanAutomation, Feature::trackMute,          Feature::trackSolo,
        Feature::clipGain,           Feature::clipGainAutomation, Feature::clipMute,
        Feature::fadeLengths};
    for (const ExportFormat format : allFormats) {
        const CarriedPart part = carried(timeline, format);
        const std::vector<Feature> recorded = featuresOf(part);
        for (const Feature feature : told) {
            const Carriage how = capability(format, feature).carriage;
            const bool isRecorded =
                std::find(recorded.begin(), recorded.end(), feature) != recorded.end();
            EXPECT_EQ(isRecorded, how == Carriage::lost || how == Carriage::metadata)
                << formatWord(format) << ": " << featureText(feature);
        }
        const auto isKept = [&](Feature feature) {
            return capability(format, feature).carriage != Carriage::lost;
        };
        const PlannedTrack& planned = part.plan.tracks[0];
        const PlannedClip& clip = onlyClip(part);
        EXPECT_EQ(part.plan.name.has_value(), isKept(Feature::sessionName));
        EXPECT_EQ(planned.gain == 0.5, isKept(Feature::trackGain));
        EXPECT_EQ(planned.gainAutomation.has_value(), isKept(Feature::trackGainAutomation));
        // The automation takes its place where there is one of both.
        EXPECT_EQ(planned.pan.has_value(),
                  capability(format, Feature::trackPan).carriage == Carriage::metadata);
        EXPECT_EQ(planned.panAutomation.has_value(), isKept(Feature::trackPanAutomation));
        EXPECT_EQ(planned.muted, isKept(Feature::trackMute));
        EXPECT_EQ(planned.solo, isKept(Feature::trackSolo));
        EXPECT_EQ(clip.gain == 0.5, isKept(Feature::clipGain));
        EXPECT_EQ(clip.gainAutomation.has_value(), isKept(Feature::clipGainAutomation));
        EXPECT_EQ(clip.muted, isKept(Feature::clipMute));
        EXPECT_EQ(clip.fadeIn.has_value(), isKept(Feature::fadeLengths));
    }
}

}  // namespace
}  // namespace trellant::exchange
