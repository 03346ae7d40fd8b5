// SPDX-License-Identifier: Apache-2.0
// What becomes of a timeline with one thing wrong, problem by problem.
#include "repair_lines.h"
#include "sample_timeline.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <set>
#include <string>
#include <vector>

namespace trellant {
namespace {

using test::emptyTimeline;
using test::label;
using test::linesOf;
using test::problemOf;
using test::sampleTimeline;
using ::testing::ElementsAre;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr double infinite = std::numeric_limits<double>::infinity();
const double notANumber = std::nan("");

using Change = std::function<void(AAFTimeline&)>;

struct Case {
    /// What is listed for it, beginning with the code that validation gives.
    std::string line;
    /// Makes the problem in the sample.
    Change damage;
    /// What the sample is after repair, where it is not the sample.
    Change expected = [](AAFTimeline&) {};
};

const std::vector<Case>& clockCases() {
    static const std::vector<Case> all{
        {"invalid-edit-rate clock: editRate replaced",
         [](auto& t) {
             t.clock.editRate = AAFRational(-30);
             t.clock.timecodeRate = AAFTimecodeRate::fps2997DF();
         },
         [](auto& t) {
             t.clock.editRate = AAFRational(30000, 1001);
             t.clock.timecodeRate = AAFTimecodeRate::fps2997DF();
         }},
        {"invalid-timecode-rate clock: timecodeRate replaced",
         [](auto& t) { t.clock.timecodeRate.exactRate = AAFRational(0); }},
        {"invalid-drop-frame-rate clock: timecodeRate replaced",
         [](auto& t) { t.clock.timecodeRate.dropFrame = true; }},
        {"invalid-timecode-rate clock: timelineZero.rate replaced",
         [](auto& t) { t.clock.timelineZero.rate.nominalFramesPerSecond = 0; }},
        {"invalid-drop-frame-rate clock: timelineZero.rate replaced",
         [](auto& t) { t.clock.timelineZero.rate.dropFrame = true; }},
        {"invalid-timecode-label clock: timelineZero clamped",
         [](auto& t) { t.clock.timelineZero = label(24, 60, -1, 25, AAFTimecodeRate::fps25()); },
         [](auto& t) { t.clock.timelineZero = label(23, 59, 0, 24, AAFTimecodeRate::fps25()); }},
        {"skipped-drop-frame-label clock: timelineZero clamped",
         [](auto& t) { t.clock.timelineZero = label(0, 1, 0, 1, AAFTimecodeRate::fps2997DF()); },
         [](auto& t) { t.clock.timelineZero = label(0, 1, 0, 2, AAFTimecodeRate::fps2997DF()); }},
        {"invalid-timecode-label clock: timelineZero clamped",
         [](auto& t) { t.clock.timelineZero = label(0, 1, -1, 0, AAFTimecodeRate::fps5994DF()); },
         [](auto& t) { t.clock.timelineZero = label(0, 1, 0, 4, AAFTimecodeRate::fps5994DF()); }},
        {"invalid-timecode-rate program-start: left out",
         [](auto& t) { t.explicitProgramStart->rate.exactRate = AAFRational(-1); },
         [](auto& t) { t.explicitProgramStart.reset(); }},
        {"invalid-drop-frame-rate program-start: left out",
         [](auto& t) { t.explicitProgramStart->rate.nominalFramesPerSecond = 25; },
         [](auto& t) { t.explicitProgramStart.reset(); }},
        {"invalid-timecode-label program-start: left out",
         [](auto& t) { t.explicitProgramStart->frames = 30; },
         [](auto& t) { t.explicitProgramStart.reset(); }},
        {"skipped-drop-frame-label program-start: left out",
         [](auto& t) { t.explicitProgramStart->minutes = 11; },
         [](auto& t) { t.explicitProgramStart.reset(); }},
        {"negative-composition-length composition: compositionLength left out",
         [](auto& t) { t.compositionLength = AAFRational(-1, 100); },
         [](auto& t) { t.compositionLength.reset(); }},
    };
    return all;
}

const std::vector<Case>& trackAndEssenceCases() {
    static const std::vector<Case> all{
        {"empty-identity track[1]: id replaced", [](auto& t) { t.tracks.push_back({.id = ""}); },
         [](auto& t) { t.tracks.push_back({.id = "repaired-track-1"}); }},
        {"duplicate-identity track[1] (t1): left out",
         [](auto& t) { t.tracks.push_back({.id = "t1", .index = 9}); }},
        {"empty-identity essence[1]: id replaced",
         [](auto& t) {
             t.essences.push_back(t.essences[0]);
             t.essences[1].id = "";
         },
         [](auto& t) {
             t.essences.push_back(t.essences[0]);
             t.essences[1].id = "repaired-essence-1";
         }},
        {"duplicate-identity essence[1] (e1): left out",
         [](auto& t) { t.essences.push_back({.id = "e1"}); }},
        {"invalid-sample-rate essence[0] (e1): sampleRate replaced",
         [](auto& t) { t.essences[0].sampleRate = AAFRational(0); }},
        {"invalid-sample-rate essence[0] (e1): sampleRate replaced",
         [](auto& t) { t.essences[0].sampleRate = AAFRational(-44100); }},
        {"invalid-sample-rate essence[0] (e1): sampleRate clamped",
         [](auto& t) { t.essences[0].sampleRate = AAFRational(2822400); },
         [](auto& t) { t.essences[0].sampleRate = AAFRational(384000); }},
        {"invalid-channel-count essence[0] (e1): channelCount clamped",
         [](auto& t) {
             t.essences[0].channelCount = -3;
             t.events[1].sourceChannel = 0;
         },
         [](auto& t) {
             t.essences[0].channelCount = 1;
             t.events[1].sourceChannel = 0;
         }},
        {"invalid-channel-count essence[0] (e1): channelCount clamped",
         [](auto& t) { t.essences[0].channelCount = 4294967296; },
         [](auto& t) { t.essences[0].channelCount = 4294967295; }},
        {"invalid-bit-depth essence[0] (e1): bitDepth left out",
         [](auto& t) { t.essences[0].bitDepth = 0; },
         [](auto& t) { t.essences[0].bitDepth.reset(); }},
        {"nonfinite-track-value track[0] (t1): fixedGain replaced",
         [](auto& t) { t.tracks[0].fixedGain = infinite; }},
        {"nonfinite-track-value track[0] (t1): fixedPan left out",
         [](auto& t) { t.tracks[0].fixedPan = notANumber; },
         [](auto& t) { t.tracks[0].fixedPan.reset(); }},
        {"nonfinite-automation track[0] (t1): gainAutomation.points left out",
         [](auto& t) { t.tracks[0].gainAutomation->points[0].value = infinite; },
         [](auto& t) { t.tracks[0].gainAutomation.reset(); }},
        {"automation-time-outside-owner track[0] (t1): panAutomation.points clamped",
         [](auto& t) { t.tracks[0].panAutomation->points[0].timelineOffset = AAFRational(3, 2); },
         [](auto& t) { t.tracks[0].panAutomation->points[0].timelineOffset = AAFRational(1); }},
    };
    return all;
}

const std::vector<Case>& eventCases() {
    static const std::vector<Case> all{
        {"empty-identity event[0] ( of t1): id replaced", [](auto& t) { t.events[0].id = ""; },
         [](auto& t) { t.events[0].id = "repaired-event-0"; }},
        {"duplicate-identity event[1] (ev1 of t1): id replaced",
         [](auto& t) { t.events[1].id = "ev1"; },
         [](auto& t) { t.events[1].id = "repaired-event-1"; }},
        {"missing-track-reference event[1] (ev/2 of t2): left out",
         [](auto& t) { t.events[1].trackID = "t2"; }, [](auto& t) { t.events.pop_back(); }},
        {"missing-essence-reference event[1] (ev/2 of t1): left out",
         [](auto& t) { t.events[1].essenceID = "t1"; }, [](auto& t) { t.events.pop_back(); }},
        {"negative-source-range event[0] (ev1 of t1): duration clamped",
         [](auto& t) { t.events[0].duration = AAFRational(-1, 9); },
         [](auto& t) { t.events[0].duration = AAFRational(0); }},
        {"negative-source-range event[0] (ev1 of t1): sourceStartSample clamped",
         [](auto& t) { t.events[0].sourceStartSample = -1; },
         [](auto& t) { t.events[0].sourceStartSample = 0; }},
        {"invalid-source-channel event[1] (ev/2 of t1): sourceChannel left out",
         [](auto& t) { t.events[1].sourceChannel = -1; },
         [](auto& t) { t.events[1].sourceChannel.reset(); }},
        {"invalid-source-channel event[1] (ev/2 of t1): sourceChannel left out",
         [](auto& t) { t.events[1].sourceChannel = 2; },
         [](auto& t) { t.events[1].sourceChannel.reset(); }},
        {"nonfinite-clip-gain event[1] (ev/2 of t1): fixedClipGain replaced",
         [](auto& t) { t.events[1].fixedClipGain = -infinite; },
         [](auto& t) { t.events[1].fixedClipGain = 1; }},
        {"automation-time-outside-owner event[1] (ev/2 of t1): clipGainAutomation.points clamped",
         [](auto& t) {
             t.events[1].clipGainAutomation.mutableValue().points[0].timelineOffset =
                 AAFRational(-1, 9);
         },
         [](auto& t) {
             t.events[1].clipGainAutomation.mutableValue().points[0].timelineOffset =
                 AAFRational(0);
         }},
        {"negative-fade-duration event[1] (ev/2 of t1): fadeIn left out",
         [](auto& t) { t.events[1].fadeIn.mutableValue().duration = AAFRational(-1); },
         [](auto& t) { t.events[1].fadeIn.reset(); }},
        {"negative-fade-duration event[1] (ev/2 of t1): fadeOut left out",
         [](auto& t) { t.events[1].fadeOut.mutableValue().duration = AAFRational(-1); },
         [](auto& t) { t.events[1].fadeOut.reset(); }},
        {"unordered-automation event[1] (ev/2 of t1): fadeIn.points reordered",
         [](auto& t) {
             auto& points = t.events[1].fadeIn.mutableValue().points;
             std::swap(points[0], points[1]);
         }},
        {"nonfinite-automation event[1] (ev/2 of t1): fadeOut.points left out",
         [](auto& t) { t.events[1].fadeOut.mutableValue().points[1].value = notANumber; },
         [](auto& t) { t.events[1].fadeOut.mutableValue().points.pop_back(); }},
        {"source-range-overflow event[1] (ev/2 of t1): left out",
         [](auto& t) { t.events[1].sourceStartSample = largest; },
         [](auto& t) { t.events.pop_back(); }},
        {"timeline-end-overflow event[0] (ev1 of t1): left out",
         [](auto& t) { t.events[0].timelineStart = AAFRational(largest); },
         [](auto& t) { t.events.erase(t.events.begin()); }},
    };
    return all;
}

std::vector<Case> allCases() {
    std::vector<Case> all = clockCases();
    all.insert(all.end(), trackAndEssenceCases().begin(), trackAndEssenceCases().end());
    all.insert(all.end(), eventCases().begin(), eventCases().end());
    return all;
}

TEST(Repair, ValidTimelineIsReturnedAsItIs) {
    EXPECT_EQ(repairedTimeline(sampleTimeline()), (AAFRepair{sampleTimeline(), {}}));
    EXPECT_EQ(repairedTimeline(emptyTimeline()), (AAFRepair{emptyTimeline(), {}}));
}

TEST(Repair, EachProblemCostsThePieceAtFaultAlone) {
    for (const Case& one : allCases()) {
        AAFTimeline damaged = sampleTimeline();
        one.damage(damaged);
        AAFTimeline expected = sampleTimeline();
        one.expected(expected);
        const AAFRepair repair = repairedTimeline(damaged);
        EXPECT_THAT(linesOf(repair), ElementsAre(one.line));
        EXPECT_TRUE(repair.timeline == expected) << one.line;
        EXPECT_EQ(problemOf(repair.timeline), "") << one.line;
        EXPECT_EQ(problemOf(damaged), one.line.substr(0, one.line.find(' ')));
    }
}

TEST(Repair, EveryCodeThatATimelineCanGetHasARepair) {
    std::set<std::string> repaired;
    for (const Case& one : allCases()) {
        repaired.insert(one.line.substr(0, one.line.find(' ')));
    }
    EXPECT_THAT(
        repaired,
        ElementsAre("automation-time-outside-owner", "duplicate-identity", "empty-identity",
                    "invalid-bit-depth", "invalid-channel-count", "invalid-drop-frame-rate",
                    "invalid-edit-rate", "invalid-sample-rate", "invalid-source-channel",
                    "invalid-timecode-label", "invalid-timecode-rate", "missing-essence-reference",
                    "missing-track-reference", "negative-composition-length",
                    "negative-fade-duration", "negative-source-range", "nonfinite-automation",
                    "nonfinite-clip-gain", "nonfinite-track-value", "skipped-drop-frame-label",
                    "source-range-overflow", "timeline-end-overflow", "unordered-automation"));
}

}  // namespace
}  // namespace trellant
