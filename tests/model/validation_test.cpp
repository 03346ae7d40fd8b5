// SPDX-License-Identifier: Apache-2.0
#include "repair_lines.h"
#include "sample_timeline.h"

#include <trellant/model/validation.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace trellant {
namespace {

using test::emptyTimeline;
using test::sampleTimeline;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr double infinite = std::numeric_limits<double>::infinity();

/// "CODE (OBJECT)" of the first problem, or "valid".
std::string verdict(const AAFTimeline& timeline) {
    try {
        AAFRawTimelineValidation::validate(timeline);
    } catch (const AAFRawTimelineValidation::Failure& failure) {
        return failure.code() + " (" + failure.object() + ")";
    }
    return "valid";
}

using Change = std::function<void(AAFTimeline&)>;

std::string verdictAfter(const Change& change) {
    AAFTimeline timeline = sampleTimeline();
    change(timeline);
    return verdict(timeline);
}

AAFTimecodeRate uncheckedRate(AAFRational exact, std::int64_t nominal, bool drop) {
    AAFTimecodeRate rate;
    rate.exactRate = exact;
    rate.nominalFramesPerSecond = nominal;
    rate.dropFrame = drop;
    return rate;
}

struct Case {
    const char* verdict;
    Change change;
};

/// One problem each, in the order of the checks.
const std::vector<Case>& cases() {
    static const std::vector<Case> all{
        {"empty-identity (track[1])", [](auto& t) { t.tracks.push_back({.id = ""}); }},
        {"duplicate-identity (track[1])", [](auto& t) { t.tracks.push_back(t.tracks[0]); }},
        {"empty-identity (essence[0])", [](auto& t) { t.essences[0].id = ""; }},
        {"duplicate-identity (essence[1])", [](auto& t) { t.essences.push_back(t.essences[0]); }},
        {"empty-identity (event[0])", [](auto& t) { t.events[0].id = ""; }},
        {"duplicate-identity (event[1])", [](auto& t) { t.events[1].id = t.events[0].id; }},
        {"invalid-edit-rate (clock)", [](auto& t) { t.clock.editRate = AAFRational(0); }},
        {"invalid-timecode-rate (clock)",
         [](auto& t) { t.clock.timecodeRate.exactRate = AAFRational(0); }},
        {"invalid-drop-frame-rate (clock)", [](auto& t) { t.clock.timecodeRate.dropFrame = true; }},
        {"invalid-timecode-rate (clock)",
         [](auto& t) { t.clock.timelineZero.rate.nominalFramesPerSecond = 0; }},
        {"invalid-drop-frame-rate (clock)",
         [](auto& t) { t.clock.timelineZero.rate.dropFrame = true; }},
        {"invalid-timecode-label (clock)", [](auto& t) { t.clock.timelineZero.hours = 24; }},
        {"skipped-drop-frame-label (clock)",
         [](auto& t) {
             t.clock.timelineZero = test::label(0, 1, 0, 1, AAFTimecodeRate::fps2997DF());
         }},
        {"invalid-timecode-rate (program-start)",
         [](auto& t) { t.explicitProgramStart->rate.exactRate = AAFRational(-1); }},
        {"invalid-drop-frame-rate (program-start)",
         [](auto& t) { t.explicitProgramStart->rate.nominalFramesPerSecond = 25; }},
        {"invalid-timecode-label (program-start)",
         [](auto& t) { t.explicitProgramStart->frames = 30; }},
        {"skipped-drop-frame-label (program-start)",
         [](auto& t) { t.explicitProgramStart->minutes = 11; }},
        {"negative-composition-length (composition)",
         [](auto& t) { t.compositionLength = AAFRational(-1, 100); }},
        {"invalid-sample-rate (essence[0])",
         [](auto& t) { t.essences[0].sampleRate = AAFRational(0); }},
        {"invalid-channel-count (essence[0])", [](auto& t) { t.essences[0].channelCount = 0; }},
        {"invalid-bit-depth (essence[0])", [](auto& t) { t.essences[0].bitDepth = 0; }},
        {"nonfinite-track-value (track[0])", [](auto& t) { t.tracks[0].fixedGain = infinite; }},
        {"nonfinite-track-value (track[0])", [](auto& t) { t.tracks[0].fixedPan = std::nan(""); }},
        {"nonfinite-automation (track[0])",
         [](auto& t) { t.tracks[0].gainAutomation->points[0].value = infinite; }},
        {"automation-time-outside-owner (track[0])",
         [](auto& t) { t.tracks[0].panAutomation->points[0].timelineOffset = AAFRational(3, 2); }},
        {"missing-track-reference (event[1])", [](auto& t) { t.events[1].trackID = "t2"; }},
        {"missing-essence-reference (event[1])", [](auto& t) { t.events[1].essenceID = "t1"; }},
        {"negative-source-range (event[0])",
         [](auto& t) { t.events[0].duration = AAFRational(-1, 9); }},
        {"negative-source-range (event[0])", [](auto& t) { t.events[0].sourceStartSample = -1; }},
        {"invalid-source-channel (event[1])", [](auto& t) { t.events[1].sourceChannel = -1; }},
        {"invalid-source-channel (event[1])", [](auto& t) { t.events[1].sourceChannel = 2; }},
        {"nonfinite-clip-gain (event[1])", [](auto& t) { t.events[1].fixedClipGain = -infinite; }},
        {"automation-time-outside-owner (event[1])",
         [](auto& t) {
             t.events[1].clipGainAutomation.mutableValue().points[0].timelineOffset =
                 AAFRational(-1, 9);
         }},
        {"negative-fade-duration (event[1])",
         [](auto& t) { t.events[1].fadeIn.mutableValue().duration = AAFRational(-1); }},
        {"unordered-automation (event[1])",
         [](auto& t) {
             auto& points = t.events[1].fadeIn.mutableValue().points;
             std::swap(points[0], points[1]);
         }},
        {"negative-fade-duration (event[1])",
         [](auto& t) { t.events[1].fadeOut.mutableValue().duration = AAFRational(-1); }},
        {"nonfinite-automation (event[1])",
         [](auto& t) { t.events[1].fadeOut.mutableValue().points[1].value = std::nan(""); }},
        {"source-range-overflow (event[1])",
         [](auto& t) { t.events[1].sourceStartSample = largest; }},
        {"timeline-end-overflow (event[1])",
         [](auto& t) { t.events[1].timelineStart = AAFRational(largest); }},
    };
    return all;
}

TEST(TimelineValidation, TheSampleIsValid) {
    EXPECT_EQ(verdict(sampleTimeline()), "valid");
}

TEST(TimelineValidation, AnEmptyTimelineWithAClockIsValid) {
    EXPECT_EQ(verdict(emptyTimeline()), "valid");
}

TEST(TimelineValidation, EveryProblemHasItsCodeAndObject) {
    for (std::size_t index = 0; index < cases().size(); ++index) {
        EXPECT_EQ(verdictAfter(cases()[index].change), cases()[index].verdict) << index;
    }
}

TEST(TimelineValidation, TheEarlierCheckIsReported) {
    // Of two problems the one that stands earlier in the list wins. Pairs that touch the same place
    // are told apart by the tests of their own.
    const auto at = [](const char* wanted) -> const Case& {
        for (const Case& candidate : cases()) {
            if (std::string(candidate.verdict) == wanted) {
                return candidate;
            }
        }
        throw std::logic_error(wanted);
    };
    const std::vector<const char*> order{"duplicate-identity (track[1])",
                                         "duplicate-identity (essence[1])",
                                         "duplicate-identity (event[1])",
                                         "invalid-edit-rate (clock)",
                                         "invalid-timecode-rate (clock)",
                                         "invalid-timecode-label (clock)",
                                         "skipped-drop-frame-label (program-start)",
                                         "negative-composition-length (composition)",
                                         "invalid-sample-rate (essence[0])",
                                         "invalid-channel-count (essence[0])",
                                         "invalid-bit-depth (essence[0])",
                                         "nonfinite-track-value (track[0])",
                                         "nonfinite-automation (track[0])",
                                         "automation-time-outside-owner (track[0])",
                                         "missing-track-reference (event[1])",
                                         "missing-essence-reference (event[1])",
                                         "invalid-source-channel (event[1])",
                                         "nonfinite-clip-gain (event[1])",
                                         "automation-time-outside-owner (event[1])",
                                         "negative-fade-duration (event[1])",
                                         "unordered-automation (event[1])",
                                         "nonfinite-automation (event[1])",
                                         "source-range-overflow (event[1])",
                                         "timeline-end-overflow (event[1])"};
    AAFTimeline timeline = sampleTimeline();
    for (std::size_t later = order.size(); later-- > 0;) {
        at(order[later]).change(timeline);
        EXPECT_EQ(verdict(timeline), order[later]);
    }
}

TEST(TimelineValidation, AnElementIsCheckedCompletelyBeforeTheNext) {
    EXPECT_EQ(verdictAfter([](auto& t) {
                  t.events[0].timelineStart = AAFRational(largest);
                  t.events[1].trackID = "nowhere";
              }),
              "timeline-end-overflow (event[0])");
}

TEST(TimelineValidation, DuplicateTracksAreReportedBeforeMissingReferences) {
    EXPECT_EQ(verdictAfter([](auto& t) {
                  t.tracks.push_back(t.tracks[0]);
                  t.events[0].trackID = "missing";
              }),
              "duplicate-identity (track[1])");
}

TEST(TimelineValidation, TheSameIdInTwoCollectionsIsAllowed) {
    EXPECT_EQ(verdictAfter([](auto& t) { t.events[0].id = "t1"; }), "valid");
}

TEST(TimelineValidation, SkippedDropFrameLabelOfTheClock) {
    const auto zeroAt = [](std::int64_t minutes, std::int64_t seconds, std::int64_t frames) {
        return verdictAfter([=](auto& t) {
            t.clock.timelineZero =
                test::label(0, minutes, seconds, frames, AAFTimecodeRate::fps2997DF());
        });
    };
    EXPECT_EQ(zeroAt(1, 0, 0), "skipped-drop-frame-label (clock)");
    EXPECT_EQ(zeroAt(1, 0, 1), "skipped-drop-frame-label (clock)");
    EXPECT_EQ(zeroAt(1, 0, 2), "valid");
    EXPECT_EQ(zeroAt(1, 1, 0), "valid");
    EXPECT_EQ(zeroAt(10, 0, 0), "valid");
}

TEST(TimelineValidation, DropFrameAt60SkipsFourLabels) {
    const auto zeroAt = [](std::int64_t frames) {
        return verdictAfter([=](auto& t) {
            t.clock.timelineZero = test::label(0, 1, 0, frames, AAFTimecodeRate::fps5994DF());
        });
    };
    EXPECT_EQ(zeroAt(3), "skipped-drop-frame-label (clock)");
    EXPECT_EQ(zeroAt(4), "valid");
}

TEST(TimelineValidation, TimecodeRatesHaveLimits) {
    const auto withRate = [](AAFRational exact, std::int64_t nominal, bool drop) {
        return verdictAfter(
            [=](auto& t) { t.clock.timecodeRate = uncheckedRate(exact, nominal, drop); });
    };
    EXPECT_EQ(withRate(AAFRational(25), 25, true), "invalid-drop-frame-rate (clock)");
    EXPECT_EQ(withRate(AAFRational(25), 0, false), "invalid-timecode-rate (clock)");
    EXPECT_EQ(withRate(AAFRational(25), 0, true), "invalid-timecode-rate (clock)");
    EXPECT_EQ(withRate(AAFRational(-25), 25, false), "invalid-timecode-rate (clock)");
    EXPECT_EQ(withRate(AAFRational(25), 106751991167300, false), "valid");
    EXPECT_EQ(withRate(AAFRational(25), 106751991167301, false), "invalid-timecode-rate (clock)");
    EXPECT_EQ(withRate(AAFRational(1), 30, true), "valid");
    EXPECT_EQ(withRate(AAFRational(1), 60, true), "valid");
}

TEST(TimelineValidation, TimecodeLabelsHaveLimits) {
    const auto withZero = [](std::int64_t hours, std::int64_t minutes, std::int64_t seconds,
                             std::int64_t frames) {
        return verdictAfter([=](auto& t) {
            t.clock.timelineZero =
                test::label(hours, minutes, seconds, frames, AAFTimecodeRate::fps25());
        });
    };
    EXPECT_EQ(withZero(23, 59, 59, 24), "valid");
    EXPECT_EQ(withZero(0, 0, 0, 0), "valid");
    for (const auto& [h, m, s, f] : std::vector<std::array<std::int64_t, 4>>{{24, 0, 0, 0},
                                                                             {-1, 0, 0, 0},
                                                                             {0, 60, 0, 0},
                                                                             {0, -1, 0, 0},
                                                                             {0, 0, 60, 0},
                                                                             {0, 0, -1, 0},
                                                                             {0, 0, 0, 25},
                                                                             {0, 0, 0, -1},
                                                                             {smallest, 0, 0, 0},
                                                                             {0, 0, 0, largest}}) {
        EXPECT_EQ(withZero(h, m, s, f), "invalid-timecode-label (clock)");
    }
}

TEST(TimelineValidation, SampleRatesUpTo384000Pass) {
    const auto withRate = [](const AAFRational& rate) {
        return verdictAfter([&](auto& t) { t.essences[0].sampleRate = rate; });
    };
    EXPECT_EQ(withRate(AAFRational(384000)), "valid");
    EXPECT_EQ(withRate(AAFRational(384001)), "invalid-sample-rate (essence[0])");
    EXPECT_EQ(withRate(AAFRational(3840001, 10)), "invalid-sample-rate (essence[0])");
    EXPECT_EQ(withRate(AAFRational(1, largest)), "valid");
    EXPECT_EQ(withRate(AAFRational(-1)), "invalid-sample-rate (essence[0])");
}

TEST(TimelineValidation, ChannelCountsHaveLimits) {
    const auto withCount = [](std::int64_t count) {
        return verdictAfter([=](auto& t) { t.essences[0].channelCount = count; });
    };
    EXPECT_EQ(withCount(4294967295), "valid");
    EXPECT_EQ(withCount(4294967296), "invalid-channel-count (essence[0])");
    EXPECT_EQ(withCount(-1), "invalid-channel-count (essence[0])");
    EXPECT_EQ(withCount(1), "invalid-source-channel (event[1])");
}

TEST(TimelineValidation, AbsentOptionalValuesPass) {
    EXPECT_EQ(verdictAfter([](auto& t) {
                  t.explicitProgramStart.reset();
                  t.compositionLength.reset();
                  t.essences[0].bitDepth.reset();
                  t.tracks[0].fixedPan.reset();
                  t.tracks[0].gainAutomation.reset();
                  t.tracks[0].panAutomation.reset();
                  t.events[1].sourceChannel.reset();
                  t.events[1].clipGainAutomation.reset();
                  t.events[1].fadeIn.reset();
                  t.events[1].fadeOut.reset();
              }),
              "valid");
    EXPECT_EQ(verdictAfter([](auto& t) { t.compositionLength = AAFRational(0); }), "valid");
}

TEST(TimelineValidation, AutomationPointsMayEndAtOneAndShareAPosition) {
    const auto withPoints = [](std::vector<AAFAutomationPoint> points) {
        return verdictAfter([&](auto& t) { t.tracks[0].gainAutomation->points = points; });
    };
    EXPECT_EQ(withPoints({}), "valid");
    EXPECT_EQ(withPoints({{AAFRational(0), 1}, {AAFRational(1), 0}}), "valid");
    EXPECT_EQ(withPoints({{AAFRational(1, 2), 1}, {AAFRational(1, 2), 0}}), "valid");
    EXPECT_EQ(withPoints({{AAFRational(1, 2), 1}, {AAFRational(1, 3), 0}}),
              "unordered-automation (track[0])");
    EXPECT_EQ(withPoints({{AAFRational(1000001, 1000000), 1}}),
              "automation-time-outside-owner (track[0])");
    EXPECT_EQ(withPoints({{AAFRational(1, 2), 1}, {AAFRational(-1), infinite}}),
              "nonfinite-automation (track[0])");
    EXPECT_EQ(withPoints({{AAFRational(1, 2), 1}, {AAFRational(-1), 0}}),
              "automation-time-outside-owner (track[0])");
}

TEST(TimelineValidation, FadeInIsCheckedWhollyBeforeFadeOut) {
    EXPECT_EQ(verdictAfter([](auto& t) {
                  t.events[1].fadeIn.mutableValue().points[0].value = infinite;
                  t.events[1].fadeOut.mutableValue().duration = AAFRational(-1);
              }),
              "nonfinite-automation (event[1])");
}

TEST(TimelineValidation, WhatIsNotChecked) {
    EXPECT_EQ(verdictAfter([](auto& t) {
                  t.events[0].timelineStart = AAFRational(-5);
                  t.events[1].timelineStart = AAFRational(-5);
                  t.events[1].semanticDecision.mutableValue().confidence = infinite;
                  t.events[1].exportSourceEventIDs.mutableValue().push_back("");
                  t.tracks[0].name = "";
                  t.sourceAAF.text = "x";
              }),
              "valid");
}

TEST(TimelineValidation, TimelineEndIsExactAtTheBorders) {
    const auto withEnd = [](const AAFRational& start, const AAFRational& duration) {
        return verdictAfter([&](auto& t) {
            // One sample in a very long time keeps the source range small.
            t.essences[0].sampleRate = AAFRational(1, largest);
            t.events[0].timelineStart = start;
            t.events[0].duration = duration;
        });
    };
    constexpr const char* overflow = "timeline-end-overflow (event[0])";
    EXPECT_EQ(withEnd(AAFRational(largest - 1), AAFRational(1)), "valid");
    EXPECT_EQ(withEnd(AAFRational(largest), AAFRational(0)), "valid");
    EXPECT_EQ(withEnd(AAFRational(largest), AAFRational(1, largest)), overflow);
    EXPECT_EQ(withEnd(AAFRational(largest - 1), AAFRational(3, 2)), overflow);
    EXPECT_EQ(withEnd(AAFRational(largest - 1), AAFRational(1, 2)), "valid");
    EXPECT_EQ(withEnd(AAFRational(largest), AAFRational(largest)), overflow);
    EXPECT_EQ(withEnd(AAFRational(smallest), AAFRational(0)), "valid");
    EXPECT_EQ(withEnd(AAFRational(smallest), AAFRational(1, 3)), "valid");
    EXPECT_EQ(withEnd(AAFRational(largest, largest - 1), AAFRational(largest - 2, largest)),
              "valid");
    EXPECT_EQ(withEnd(AAFRational(smallest, largest), AAFRational(largest, largest - 1)), "valid");
}

}  // namespace
}  // namespace trellant
