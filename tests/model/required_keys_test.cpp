// SPDX-License-Identifier: Apache-2.0
// For every record: each key taken away in turn. Required ones fail and are named, optional ones
// leave their field absent.
#include "decoding_error.h"

#include <trellant/model/timeline_json.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace trellant {
namespace {

struct Member {
    std::string key;
    std::string value;
    bool required;
};
using Members = std::vector<Member>;

constexpr bool required = true;
constexpr bool optional = false;

constexpr const char* half = R"({"numerator":1,"denominator":2})";
constexpr const char* linear = R"({"linear":{}})";
constexpr const char* rateJson =
    R"({"exactRate":{"numerator":25,"denominator":1},"nominalFramesPerSecond":25,)"
    R"("dropFrame":false})";
constexpr const char* envelopeJson = R"({"interpolation":{"linear":{}},"points":[]})";
constexpr const char* fadeJson =
    R"({"direction":"fadeIn","duration":{"numerator":1,"denominator":2},)"
    R"("curve":{"linear":{}},"points":[]})";

std::string addressJson() {
    return std::string(R"({"hours":0,"minutes":0,"seconds":0,"frames":0,"rate":)") + rateJson + "}";
}

std::string clockJson() {
    return std::string(R"({"editRate":{"numerator":25,"denominator":1},"timecodeRate":)") +
           rateJson + R"(,"timelineZero":)" + addressJson() + "}";
}

std::string objectWithout(const Members& members, std::string_view missing) {
    std::string text = "{";
    for (const Member& member : members) {
        if (member.key != missing) {
            text += (text.size() > 1 ? ",\"" : "\"") + member.key + "\":" + member.value;
        }
    }
    return text + "}";
}

template <class T>
void expectKeys(const Members& members) {
    ASSERT_EQ(test::decodingError<T>(objectWithout(members, "")), "decoded");
    for (const Member& member : members) {
        EXPECT_EQ(test::decodingError<T>(objectWithout(members, member.key)),
                  member.required ? member.key + ": missing key" : "decoded")
            << member.key;
    }
    EXPECT_EQ(test::decodingError<T>("{}"), members.front().key + ": missing key");
}

TEST(RequiredKeys, Rational) {
    expectKeys<AAFRational>({{"numerator", "1", required}, {"denominator", "2", required}});
}

TEST(RequiredKeys, TimecodeRate) {
    expectKeys<AAFTimecodeRate>({{"exactRate", half, required},
                                 {"nominalFramesPerSecond", "25", required},
                                 {"dropFrame", "false", required}});
}

TEST(RequiredKeys, TimecodeAddress) {
    expectKeys<AAFTimecodeAddress>({{"hours", "1", required},
                                    {"minutes", "2", required},
                                    {"seconds", "3", required},
                                    {"frames", "4", required},
                                    {"rate", rateJson, required}});
}

TEST(RequiredKeys, ProgramClock) {
    expectKeys<AAFProgramClock>({{"editRate", half, required},
                                 {"timecodeRate", rateJson, required},
                                 {"timelineZero", addressJson(), required}});
}

TEST(RequiredKeys, AutomationPoint) {
    expectKeys<AAFAutomationPoint>(
        {{"timelineOffset", half, required}, {"value", "0.5", required}});
}

TEST(RequiredKeys, AutomationEnvelope) {
    expectKeys<AAFAutomationEnvelope>(
        {{"interpolation", linear, required}, {"points", "[]", required}});
}

TEST(RequiredKeys, Fade) {
    expectKeys<AAFFade>({{"direction", R"("fadeIn")", required},
                         {"duration", half, required},
                         {"curve", linear, required},
                         {"points", "[]", required},
                         {"reversesPointTime", "true", optional}});
}

TEST(RequiredKeys, SourceEssence) {
    expectKeys<AAFSourceEssence>({{"id", R"("e")", required},
                                  {"mobID", R"("m")", optional},
                                  {"sourceName", R"("n")", optional},
                                  {"fileURL", R"("file:///a")", optional},
                                  {"embedded", "true", required},
                                  {"sampleRate", half, required},
                                  {"channelCount", "1", required},
                                  {"bitDepth", "16", optional},
                                  {"codec", R"("lpcm")", optional},
                                  {"originalPath", R"("p")", optional}});
}

TEST(RequiredKeys, TrackState) {
    expectKeys<AAFTrackState>({{"id", R"("t")", required},
                               {"index", "0", required},
                               {"name", R"("n")", optional},
                               {"fixedGain", "1", required},
                               {"gainAutomation", envelopeJson, optional},
                               {"fixedPan", "0.5", optional},
                               {"panAutomation", envelopeJson, optional},
                               {"muted", "false", required},
                               {"solo", "false", required}});
}

TEST(RequiredKeys, SemanticDecision) {
    expectKeys<AAFSemanticDecision>({{"role", R"("voice")", required},
                                     {"confidence", "1", required},
                                     {"reason", R"("r")", required}});
}

TEST(RequiredKeys, ExportTrackNameOrigin) {
    expectKeys<AAFClipEvent::ExportTrackNameOrigin>({{"schemaVersion", "1", required},
                                                     {"originalName", R"("o")", required},
                                                     {"exportedName", R"("e")", required},
                                                     {"role", R"("other")", required}});
}

TEST(RequiredKeys, ClipEvent) {
    expectKeys<AAFClipEvent>(
        {{"id", R"("ev")", required},
         {"trackID", R"("t")", required},
         {"essenceID", R"("e")", required},
         {"clipName", R"("c")", optional},
         {"timelineStart", half, required},
         {"duration", half, required},
         {"sourceStartSample", "0", required},
         {"sourceChannel", "0", optional},
         {"channelRole", R"("mono")", required},
         {"fixedClipGain", "1", required},
         {"clipGainAutomation", envelopeJson, optional},
         {"clipMuted", "false", required},
         {"fadeIn", fadeJson, optional},
         {"fadeOut", fadeJson, optional},
         {"semanticDecision", R"({"role":"voice","confidence":1,"reason":"r"})", optional},
         {"exportSourceEventIDs", "[]", optional},
         {"exportTrackNameOrigin",
          R"({"schemaVersion":1,"originalName":"o","exportedName":"e","role":"voice"})",
          optional}});
}

TEST(RequiredKeys, UnsupportedFeature) {
    expectKeys<AAFUnsupportedFeature>({{"id", R"("u")", required},
                                       {"severity", R"("renderAffecting")", required},
                                       {"description", R"("d")", required},
                                       {"objectPath", R"("p")", optional}});
}

TEST(RequiredKeys, Timeline) {
    expectKeys<AAFTimeline>({{"sourceAAF", R"("file:///a")", required},
                             {"clock", clockJson(), required},
                             {"explicitProgramStart", addressJson(), optional},
                             {"essences", "[]", required},
                             {"tracks", "[]", required},
                             {"events", "[]", required},
                             {"unsupportedFeatures", "[]", required},
                             {"compositionName", R"("c")", optional},
                             {"sourceApplication", R"("s")", optional},
                             {"compositionLength", half, optional},
                             {"hasNativeTimecode", "true", optional}});
}

}  // namespace
}  // namespace trellant
