// SPDX-License-Identifier: Apache-2.0
#include "decoding_error.h"
#include "kept_json.h"
#include "sample_timeline.h"

#include <trellant/model/timeline_json.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace trellant {
namespace {

using test::decodingError;
using test::keptDeclaredJson;
using test::keptSortedJson;
using test::replaced;
using test::sampleTimeline;
using test::sampleTimelineJson;

TEST(JsonDecode, FullTimeline) {
    EXPECT_EQ(decodeJson<AAFTimeline>(sampleTimelineJson()), sampleTimeline());
}

TEST(JsonDecode, EncodedTimelineDecodesToItself) {
    EXPECT_EQ(decodeJson<AAFTimeline>(keptSortedJson(sampleTimeline())), sampleTimeline());
    EXPECT_EQ(decodeJson<AAFTimeline>(keptDeclaredJson(sampleTimeline())), sampleTimeline());
}

TEST(JsonDecode, EventWithoutOptionalKeysIsTheSameEvent) {
    EXPECT_EQ(decodeJson<AAFClipEvent>(test::plainEventJson()), test::plainEvent());
}

TEST(JsonDecode, NullIsAnAbsentOptionalField) {
    std::string text = test::plainEventJson();
    text.pop_back();
    text += R"(,"clipName":null,"sourceChannel":null,"clipGainAutomation":null,"fadeIn":null,)"
            R"("fadeOut":null,"semanticDecision":null,"exportSourceEventIDs":null,)"
            R"("exportTrackNameOrigin":null})";
    EXPECT_EQ(decodeJson<AAFClipEvent>(text), test::plainEvent());
}

TEST(JsonDecode, NullIsNoRequiredField) {
    EXPECT_EQ(decodingError<AAFClipEvent>(replaced(test::plainEventJson(), R"("ev1")", "null")),
              "id: expected a string, found null");
    EXPECT_EQ(
        decodingError<AAFAutomationEnvelope>(R"({"interpolation":{"linear":{}},"points":null})"),
        "points: expected an array, found null");
}

TEST(JsonDecode, TypesThatDoNotFitNameTheirKeyPath) {
    const auto errorFor = [](const std::string& from, const std::string& to) {
        return decodingError<AAFTimeline>(replaced(sampleTimelineJson(), from, to));
    };
    EXPECT_EQ(errorFor(R"("Reel 1")", "7"), "compositionName: expected a string, found a number");
    EXPECT_EQ(errorFor(R"("hasNativeTimecode":true)", R"("hasNativeTimecode":1)"),
              "hasNativeTimecode: expected a boolean, found a number");
    EXPECT_EQ(errorFor(R"("embedded":true)", R"("embedded":"true")"),
              "essences[0].embedded: expected a boolean, found a string");
    EXPECT_EQ(errorFor(R"("sourceChannel":1)", R"("sourceChannel":1.5)"),
              "events[1].sourceChannel: the number is not whole");
    EXPECT_EQ(errorFor(R"("exportSourceEventIDs":["a","b"])", R"("exportSourceEventIDs":["a",2])"),
              "events[1].exportSourceEventIDs[1]: expected a string, found a number");
    EXPECT_EQ(errorFor(R"("exportSourceEventIDs":["a","b"])", R"("exportSourceEventIDs":"a")"),
              "events[1].exportSourceEventIDs: expected an array, found a string");
    EXPECT_EQ(errorFor(R"({"unsupported":{"identifier":"spline"}})", R"({"unsupported":{}})"),
              "events[1].clipGainAutomation.interpolation.unsupported.identifier: missing key");
    EXPECT_EQ(errorFor(R"("fixedPan":0.5)", R"("fixedPan":{})"),
              "tracks[0].fixedPan: expected a number, found an object");
}

TEST(JsonDecode, ErrorsCarryPathAndReasonApart) {
    try {
        (void)decodeJson<AAFRational>(R"({"numerator":1,"denominator":"2"})");
        FAIL();
    } catch (const JsonDecodingError& error) {
        EXPECT_EQ(error.keyPath(), "denominator");
        EXPECT_EQ(error.reason(), "expected an integer, found a string");
        EXPECT_STREQ(error.what(), "denominator: expected an integer, found a string");
    }
}

TEST(JsonDecode, OutermostValueOfAnotherTypeHasNoPath) {
    EXPECT_EQ(decodingError<AAFTimeline>("[]"), "expected an object, found an array");
    EXPECT_EQ(decodingError<AAFTimeline>("null"), "expected an object, found null");
    EXPECT_EQ(decodingError<AAFTimeline>("1"), "expected an object, found a number");
    EXPECT_EQ(decodingError<AAFTimeline>("true"), "expected an object, found a boolean");
}

TEST(JsonDecode, UnknownRawValuesFail) {
    const auto roleError = [](const std::string& role) {
        return decodingError<AAFClipEvent>(
            replaced(test::plainEventJson(), R"("left")", "\"" + role + "\""));
    };
    EXPECT_EQ(decodeJson<AAFChannelRole>(R"("lfe")"), AAFChannelRole::lfe);
    EXPECT_EQ(roleError("LFE"), R"(channelRole: unknown value "LFE")");
    EXPECT_EQ(roleError(""), R"(channelRole: unknown value "")");
    EXPECT_EQ(roleError("a\\n\xC3\xBC"), "channelRole: unknown value \"a\\u000a\xC3\xBC\"");
    EXPECT_EQ(roleError(std::string(500, 'x')),
              "channelRole: unknown value \"" + std::string(120, 'x') + "...\"");
}

TEST(JsonDecode, URLsAreKeptAsTheirText) {
    EXPECT_EQ(decodeJson<AAFURL>(R"("no url at all \u0001")").text, "no url at all \x01");
    EXPECT_EQ(decodingError<AAFURL>(R"("")"), "the URL is empty");
    EXPECT_EQ(decodingError<AAFURL>("1"), "expected a URL, found a number");
}

TEST(JsonDecode, RationalsAreNormalised) {
    EXPECT_EQ(decodeJson<AAFRational>(R"({"numerator":6,"denominator":-4})"), AAFRational(-3, 2));
    EXPECT_EQ(decodeJson<AAFRational>(R"({"denominator":-5,"numerator":0})"), AAFRational(0));
    EXPECT_EQ(decodeJson<AAFRational>(
                  R"({"numerator":-9223372036854775808,"denominator":-9223372036854775808})"),
              AAFRational(1));
}

TEST(JsonDecode, ZeroDenominatorFails) {
    EXPECT_EQ(decodingError<AAFRational>(R"({"numerator":1,"denominator":0})"),
              "denominator: AAFRational denominator must not be zero");
    EXPECT_EQ(decodingError<AAFTimeline>(replaced(sampleTimelineJson(),
                                                  R"({"denominator":1,"numerator":48000})",
                                                  R"({"denominator":-0,"numerator":48000})")),
              "essences[0].sampleRate.denominator: AAFRational denominator must not be zero");
}

TEST(JsonDecode, TimecodeRecordsAreFilledUnchecked) {
    const auto address =
        decodeJson<AAFTimecodeAddress>(R"({"hours":-1,"minutes":99,"seconds":60,"frames":1000,)"
                                       R"("rate":{"exactRate":{"numerator":-25,"denominator":1},)"
                                       R"("nominalFramesPerSecond":0,"dropFrame":true}})");
    EXPECT_EQ(address.hours, -1);
    EXPECT_EQ(address.minutes, 99);
    EXPECT_EQ(address.seconds, 60);
    EXPECT_EQ(address.frames, 1000);
    EXPECT_EQ(address.rate.exactRate, AAFRational(-25));
    EXPECT_EQ(address.rate.nominalFramesPerSecond, 0);
    EXPECT_TRUE(address.rate.dropFrame);
}

TEST(JsonDecode, TheLastOfEqualKeysWins) {
    EXPECT_EQ(decodeJson<AAFRational>(R"({"numerator":1,"denominator":2,"numerator":3})"),
              AAFRational(3, 2));
    EXPECT_EQ(decodeJson<AAFRational>(R"({"denominator":0,"numerator":1,"denominator":2})"),
              AAFRational(1, 2));
    const auto envelope = decodeJson<AAFAutomationEnvelope>(
        R"({"interpolation":{"linear":{}},)"
        R"("points":[{"timelineOffset":{"numerator":0,"denominator":1},"value":1}],)"
        R"("interpolation":{"power":{}},"points":[]})");
    EXPECT_EQ(envelope, (AAFAutomationEnvelope{AAFAutomationInterpolation::power(), {}}));
}

TEST(JsonDecode, TheLastOfEqualOptionalKeysWins) {
    const auto fade = [](const std::string& tail) {
        return decodeJson<AAFFade>(
            R"({"direction":"fadeIn","duration":{"numerator":1,"denominator":2},)"
            R"("curve":{"linear":{}},"points":[])" +
            tail + "}");
    };
    EXPECT_EQ(fade(R"(,"reversesPointTime":true,"reversesPointTime":false)").reversesPointTime,
              false);
    EXPECT_EQ(fade(R"(,"reversesPointTime":true,"reversesPointTime":null)").reversesPointTime,
              std::nullopt);
    EXPECT_EQ(fade(R"(,"reversesPointTime":null,"reversesPointTime":true)").reversesPointTime,
              true);
}

TEST(JsonDecode, AReplacedRecordKeepsNothingOfTheFirst) {
    std::string text = test::plainEventJson();
    text.pop_back();
    text += R"(,"semanticDecision":{"role":"music","confidence":1,"reason":"r"},)"
            R"("semanticDecision":{"role":"music","confidence":1}})";
    EXPECT_EQ(decodingError<AAFClipEvent>(text), "semanticDecision.reason: missing key");
}

TEST(JsonDecode, MapsKeepTheirKeys) {
    using Map = std::map<std::string, std::string>;
    EXPECT_EQ(decodeJson<Map>(R"({"b":"2","a\/\u0000":"1","":"3","b":"4"})"),
              (Map{{"b", "4"}, {std::string("a/\0", 3), "1"}, {"", "3"}}));
    EXPECT_EQ(decodeJson<Map>("{}"), Map{});
    EXPECT_EQ(decodingError<Map>(R"({"a\n":1})"), "a\\u000a: expected a string, found a number");
}

TEST(JsonDecode, TimelineEndsWithItsValidation) {
    const std::string text =
        replaced(sampleTimelineJson(), R"("channelCount":2)", R"("channelCount":0)");
    try {
        (void)decodeJson<AAFTimeline>(text);
        FAIL();
    } catch (const AAFRawTimelineValidation::Failure& failure) {
        EXPECT_STREQ(failure.what(), "AAF raw model: invalid-channel-count (essence[0])");
    }
}

TEST(JsonDecode, ValidationCanBeLeftOut) {
    const std::string text =
        replaced(sampleTimelineJson(), R"("channelCount":2)", R"("channelCount":0)");
    EXPECT_EQ(decodeJson<AAFTimeline>(text, TimelineChecks::none).essences[0].channelCount, 0);
}

TEST(JsonDecode, OtherRecordsAloneAreNotValidated) {
    AAFClipEvent event = test::plainEvent();
    event.duration = AAFRational(-1);
    event.trackID.clear();
    EXPECT_EQ(decodeJson<AAFClipEvent>(keptSortedJson(event)), event);
}

TEST(JsonDecode, EveryTruncationFails) {
    const std::string text = sampleTimelineJson();
    for (std::size_t length = 0; length < text.size(); ++length) {
        ASSERT_NE(decodingError<AAFTimeline>(text.substr(0, length)), "decoded") << length;
    }
}

TEST(JsonDecode, EveryFlippedByteGivesATimelineOrATypedError) {
    const std::string text = sampleTimelineJson();
    std::size_t refused = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        for (const unsigned mask : {0x01U, 0x10U, 0x80U, 0xFFU}) {
            std::string damaged = text;
            damaged[at] = static_cast<char>(static_cast<unsigned char>(damaged[at]) ^ mask);
            try {
                (void)decodeJson<AAFTimeline>(damaged);
            } catch (const JsonDecodingError&) {
                ++refused;
            } catch (const AAFRawTimelineValidation::Failure&) {
                ++refused;
            }
        }
    }
    EXPECT_GT(refused, text.size());
}

TEST(JsonDecode, AStopEndsALongDecoding) {
    std::string text = "[0";
    for (int count = 0; count < 2000; ++count) {
        text += ",0";
    }
    text += "]";
    StopSource stop;
    EXPECT_EQ(
        decodeJson<std::vector<std::int64_t>>(text, TimelineChecks::validate, stop.get_token())
            .size(),
        2001U);
    stop.request_stop();
    EXPECT_THROW((void)decodeJson<std::vector<std::int64_t>>(text, TimelineChecks::validate,
                                                             stop.get_token()),
                 JsonDecodingStopped);
}

TEST(JsonDecode, AStopEndsOneLongStringAndOneLongRunOfBlanks) {
    StopSource stop;
    stop.request_stop();
    for (const std::string& text :
         {"\"" + std::string(2000, 'x') + "\"", std::string(2000, ' ') + "\"x\""}) {
        EXPECT_THROW(
            (void)decodeJson<std::string>(text, TimelineChecks::validate, stop.get_token()),
            JsonDecodingStopped);
    }
}

}  // namespace
}  // namespace trellant
