// SPDX-License-Identifier: Apache-2.0
// One good timeline with one thing wrong after the other: no rule of the validation is passed by.
#include "client_fixture.h"
#include "misbehaving_worker/answers.h"

#include <sample_timeline.h>
#include <vector>

namespace trellant::testing {

namespace {

struct Lie {
    std::string from;
    std::string to;
    std::string reason;
};

class ClientBrokenTimelines : public ClientTest {
  protected:
    void expectEach(const std::vector<Lie>& lies) const {
        for (const Lie& lie : lies) {
            SCOPED_TRACE(lie.reason);
            const std::string timeline =
                test::replaced(test::sampleTimelineJson(), lie.from, lie.to);
            expectFault(act({.output = resultText(timeline)}), InvalidResponse{lie.reason});
        }
    }
};

constexpr const char* sourceStart = R"("id":"ev1","sourceStartSample":48000)";

TEST_F(ClientBrokenTimelines, TheSampleIsTaken) {
    EXPECT_TRUE(valueOf(act({.output = resultText(test::sampleTimelineJson())})).timeline ==
                test::sampleTimeline());
}

TEST_F(ClientBrokenTimelines, IdentitiesAndReferences) {
    expectEach({
        {R"("id":"t1")", R"("id":"")", "AAF raw model: empty-identity (track[0])"},
        {R"("id":"ev\/2")", R"("id":"ev1")", "AAF raw model: duplicate-identity (event[1])"},
        {R"("trackID":"t1"},{)", R"("trackID":"t9"},{)",
         "AAF raw model: missing-track-reference (event[0])"},
        {R"("essenceID":"e1","exportSourceEventIDs")", R"("essenceID":"e9","exportSourceEventIDs")",
         "AAF raw model: missing-essence-reference (event[1])"},
    });
}

TEST_F(ClientBrokenTimelines, Clocks) {
    expectEach({
        {R"("clock":{"editRate":{"denominator":1,"numerator":25})",
         R"("clock":{"editRate":{"denominator":1,"numerator":0})",
         "AAF raw model: invalid-edit-rate (clock)"},
        {R"("timecodeRate":{"dropFrame":false,"exactRate":{"denominator":1,"numerator":25})",
         R"("timecodeRate":{"dropFrame":false,"exactRate":{"denominator":1,"numerator":-25})",
         "AAF raw model: invalid-timecode-rate (clock)"},
        {R"("timecodeRate":{"dropFrame":false)", R"("timecodeRate":{"dropFrame":true)",
         "AAF raw model: invalid-drop-frame-rate (clock)"},
        {R"("hours":1)", R"("hours":24)", "AAF raw model: invalid-timecode-label (clock)"},
        {R"("minutes":10)", R"("minutes":11)",
         "AAF raw model: skipped-drop-frame-label (program-start)"},
    });
}

TEST_F(ClientBrokenTimelines, LengthsAndFormats) {
    expectEach({
        {R"("compositionLength":{"denominator":30,"numerator":1001})",
         R"("compositionLength":{"denominator":30,"numerator":-1001})",
         "AAF raw model: negative-composition-length (composition)"},
        {R"("sampleRate":{"denominator":1,"numerator":48000})",
         R"("sampleRate":{"denominator":1,"numerator":384001})",
         "AAF raw model: invalid-sample-rate (essence[0])"},
        {R"("channelCount":2)", R"("channelCount":0)",
         "AAF raw model: invalid-channel-count (essence[0])"},
        {R"("bitDepth":24)", R"("bitDepth":0)", "AAF raw model: invalid-bit-depth (essence[0])"},
    });
}

TEST_F(ClientBrokenTimelines, AutomationAndFades) {
    const std::string point = R"({"timelineOffset":{"denominator":1,"numerator":)";
    const std::string fadeIn =
        R"("direction":"fadeIn","duration":{"denominator":4,"numerator":1},"points":[)";
    expectEach({
        {R"({"constant":{}},"points":[{"timelineOffset":{"denominator":2,"numerator":1})",
         R"({"constant":{}},"points":[{"timelineOffset":{"denominator":2,"numerator":3})",
         "AAF raw model: automation-time-outside-owner (track[0])"},
        {fadeIn + point + R"(0},"value":0},)" + point + "1}",
         fadeIn + point + R"(1},"value":0},)" + point + "0}",
         "AAF raw model: unordered-automation (event[1])"},
        {R"("direction":"fadeIn","duration":{"denominator":4,"numerator":1})",
         R"("direction":"fadeIn","duration":{"denominator":4,"numerator":-1})",
         "AAF raw model: negative-fade-duration (event[1])"},
    });
}

TEST_F(ClientBrokenTimelines, Ranges) {
    const std::string start = R"(,"timelineStart":{"denominator":1,"numerator":)";
    expectEach({
        {sourceStart, R"("id":"ev1","sourceStartSample":-1)",
         "AAF raw model: negative-source-range (event[0])"},
        {R"("sourceChannel":1)", R"("sourceChannel":2)",
         "AAF raw model: invalid-source-channel (event[1])"},
        {sourceStart, R"("id":"ev1","sourceStartSample":9223372036854775807)",
         "AAF raw model: source-range-overflow (event[0])"},
        {sourceStart + start + "10}", sourceStart + start + "9223372036854775807}",
         "AAF raw model: timeline-end-overflow (event[0])"},
    });
}

TEST_F(ClientBrokenTimelines, NumbersBeyondTheDoublesFailBeforeTheirRules) {
    expectEach({
        {R"("fixedGain":1,)", R"("fixedGain":1e999,)",
         "timeline.tracks[0].fixedGain: the number is out of range"},
        {R"("fixedPan":0.5)", R"("fixedPan":-1e999)",
         "timeline.tracks[0].fixedPan: the number is out of range"},
        {R"({"logarithmic":{}},"points":[{"timelineOffset":{"denominator":2,"numerator":1},"value":0.25)",
         R"({"logarithmic":{}},"points":[{"timelineOffset":{"denominator":2,"numerator":1},"value":1e999)",
         "timeline.tracks[0].panAutomation.points[0].value: the number is out of range"},
        {R"("fixedClipGain":0.5,"id":"ev1")", R"("fixedClipGain":1e999,"id":"ev1")",
         "timeline.events[0].fixedClipGain: the number is out of range"},
    });
}

}  // namespace

}  // namespace trellant::testing
