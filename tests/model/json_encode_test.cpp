// SPDX-License-Identifier: Apache-2.0
#include "kept_json.h"
#include "sample_timeline.h"

#include <trellant/model/timeline_json.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace trellant {
namespace {

using test::keptDeclaredJson;
using test::keptSortedJson;
using test::sampleTimeline;

constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(JsonEncode, FullTimelineWithSortedKeys) {
    EXPECT_EQ(keptSortedJson(sampleTimeline()), test::sampleTimelineJson());
}

TEST(JsonEncode, AbsentOptionalFieldsAreLeftOut) {
    EXPECT_EQ(keptSortedJson(test::plainEvent()), test::plainEventJson());
    EXPECT_EQ(keptSortedJson(AAFSourceEssence{.id = "e"}),
              R"({"channelCount":0,"embedded":false,"id":"e",)"
              R"("sampleRate":{"denominator":1,"numerator":0}})");
    EXPECT_EQ(keptSortedJson(AAFTrackState{.id = "t"}),
              R"({"fixedGain":1,"id":"t","index":0,"muted":false,"solo":false})");
}

TEST(JsonEncode, EmptyTimelineHasEmptyLists) {
    const std::string rate = R"({"dropFrame":false,"exactRate":{"denominator":1,"numerator":25},)"
                             R"("nominalFramesPerSecond":25})";
    EXPECT_EQ(keptSortedJson(test::emptyTimeline()),
              R"({"clock":{"editRate":{"denominator":1,"numerator":25},"timecodeRate":)" + rate +
                  R"(,"timelineZero":{"frames":0,"hours":1,"minutes":0,"rate":)" + rate +
                  R"(,"seconds":0}},"essences":[],"events":[],)"
                  R"("sourceAAF":"file:\/\/\/film.omf","tracks":[],"unsupportedFeatures":[]})");
}

TEST(JsonEncode, DeclaredOrderIsTheDocumentedOne) {
    AAFFade fade;
    fade.direction = AAFFade::Direction::fadeOut;
    fade.duration = AAFRational(1, 3);
    fade.points = {{AAFRational(0), 0.5}};
    fade.reversesPointTime = false;
    EXPECT_EQ(keptDeclaredJson(fade),
              R"({"direction":"fadeOut","duration":{"numerator":1,"denominator":3},)"
              R"("curve":{"linear":{}},)"
              R"("points":[{"timelineOffset":{"numerator":0,"denominator":1},"value":0.5}],)"
              R"("reversesPointTime":false})");
}

TEST(JsonEncode, EveryInterpolationHasItsCaseName) {
    const auto encoded = [](AAFAutomationInterpolation curve) {
        return keptSortedJson(AAFAutomationEnvelope{std::move(curve), {}});
    };
    EXPECT_EQ(encoded(AAFAutomationInterpolation::constant()),
              R"({"interpolation":{"constant":{}},"points":[]})");
    EXPECT_EQ(encoded(AAFAutomationInterpolation::linear()),
              R"({"interpolation":{"linear":{}},"points":[]})");
    EXPECT_EQ(encoded(AAFAutomationInterpolation::power()),
              R"({"interpolation":{"power":{}},"points":[]})");
    EXPECT_EQ(encoded(AAFAutomationInterpolation::logarithmic()),
              R"({"interpolation":{"logarithmic":{}},"points":[]})");
    EXPECT_EQ(encoded(AAFAutomationInterpolation::unsupported("a/b")),
              R"({"interpolation":{"unsupported":{"identifier":"a\/b"}},"points":[]})");
}

TEST(JsonEncode, FindsTheFirstNumberThatIsNotFinite) {
    EXPECT_EQ(findUnencodable(sampleTimeline()), std::nullopt);

    AAFTimeline gain = sampleTimeline();
    gain.events[1].fixedClipGain = infinite;
    EXPECT_EQ(findUnencodable(gain), "events[1].fixedClipGain");

    AAFTimeline pan = sampleTimeline();
    pan.tracks[0].fixedPan = std::nan("");
    pan.events[1].fixedClipGain = infinite;
    EXPECT_EQ(findUnencodable(pan), "tracks[0].fixedPan");

    AAFTimeline point = sampleTimeline();
    point.events[1].fadeOut.mutableValue().points[1].value = -infinite;
    EXPECT_EQ(findUnencodable(point), "events[1].fadeOut.points[1].value");

    AAFTimeline decision = sampleTimeline();
    decision.events[1].semanticDecision.mutableValue().confidence = infinite;
    EXPECT_EQ(findUnencodable(decision), "events[1].semanticDecision.confidence");
}

/// Fails the test when anything is written.
class UntouchedSink final : public JsonSink {
  public:
    void write(std::string_view bytes) override { FAIL() << bytes; }
};

TEST(JsonEncode, RefusalWritesNoByte) {
    AAFTimeline timeline = sampleTimeline();
    timeline.tracks[0].fixedGain = infinite;
    UntouchedSink sink;
    JsonWriter writer(sink);
    for (const bool sorted : {true, false}) {
        try {
            sorted ? encodeSorted(writer, timeline) : encodeDeclared(writer, timeline);
            FAIL();
        } catch (const JsonEncodingError& error) {
            EXPECT_EQ(error.keyPath(), "tracks[0].fixedGain");
            EXPECT_STREQ(error.what(),
                         "cannot encode tracks[0].fixedGain: the number is not finite");
        }
    }
    writer.flush();
}

}  // namespace
}  // namespace trellant
