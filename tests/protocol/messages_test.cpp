// SPDX-License-Identifier: Apache-2.0
#include <trellant/model/timeline_json.h>
#include <trellant/model/validation.h>
#include <trellant/protocol/messages.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <trellant_testing/encoded_documents.h>

namespace trellant {
namespace {

using Request = AAFWorkerProtocol::Request;
using Progress = AAFWorkerProtocol::Progress;
using Result = AAFWorkerProtocol::Result;

constexpr const char* requestJson =
    R"({"protocolVersion":1,"operation":"extractAndInspect","aafPath":"\/in\/film.omf",)"
    R"("workDirectory":"\/out","mediaSearchDirectory":"\/media",)"
    R"("recoverProToolsTrueFades":true,"removeProToolsSampleAccurateEditFragments":false})";

Request sampleRequest() {
    return {1,    Request::Operation::extractAndInspect, "/in/film.omf", "/out", "/media", true,
            false};
}

std::string encoded(const Request& request) {
    const std::string json = encodeRequest(request);
    testing::keepEncoded("request", json);
    return json;
}

std::string encoded(const Progress& progress) {
    const std::string json = encodeProgress(progress);
    testing::keepEncoded("progress", json);
    return json;
}

template <class Decode>
std::string errorOf(Decode decode, std::string_view json) {
    try {
        (void)decode(json);
    } catch (const JsonDecodingError& error) {
        return error.what();
    }
    return "decoded";
}

std::string requestError(std::string_view json) {
    return errorOf(decodeRequest, json);
}

std::string replaced(std::string text, std::string_view from, std::string_view to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

TEST(WorkerProtocol, VersionIsOne) {
    EXPECT_EQ(AAFWorkerProtocol::version, 1);
}

TEST(WorkerRequest, EncodesInDocumentedOrder) {
    EXPECT_EQ(encoded(sampleRequest()), requestJson);
}

TEST(WorkerRequest, Decodes) {
    EXPECT_EQ(decodeRequest(requestJson), sampleRequest());
}

TEST(WorkerRequest, AbsentSearchDirectoryIsLeftOut) {
    Request request = sampleRequest();
    request.mediaSearchDirectory.reset();
    EXPECT_EQ(encoded(request), replaced(requestJson, R"("mediaSearchDirectory":"\/media",)", ""));
}

TEST(WorkerRequest, NullOrMissingSearchDirectoryIsAbsent) {
    EXPECT_EQ(decodeRequest(replaced(requestJson, R"("\/media")", "null")).mediaSearchDirectory,
              std::nullopt);
    EXPECT_EQ(decodeRequest(replaced(requestJson, R"("mediaSearchDirectory":"\/media",)", ""))
                  .mediaSearchDirectory,
              std::nullopt);
}

TEST(WorkerRequest, EmptySearchDirectoryIsPresent) {
    EXPECT_EQ(decodeRequest(replaced(requestJson, R"("\/media")", R"("")")).mediaSearchDirectory,
              "");
}

TEST(WorkerRequest, EveryOperationHasItsRawValue) {
    using Operation = Request::Operation;
    for (const auto& [name, operation] :
         std::map<std::string, Operation>{{"inspect", Operation::inspect},
                                          {"extractAndInspect", Operation::extractAndInspect},
                                          {"verifyExport", Operation::verifyExport}}) {
        EXPECT_EQ(rawValue(operation), name);
        EXPECT_EQ(fromRawValue<Operation>(name), operation);
        EXPECT_EQ(decodeRequest(replaced(requestJson, "extractAndInspect", name)).operation,
                  operation);
    }
}

TEST(WorkerRequest, OperationsAreComparedWithTheirCase) {
    EXPECT_EQ(requestError(replaced(requestJson, "extractAndInspect", "Inspect")),
              R"(operation: unknown value "Inspect")");
}

TEST(WorkerRequest, EveryRequiredKeyIsNamedWhenMissing) {
    for (const auto& [key, member] : std::map<std::string, std::string>{
             {"protocolVersion", R"("protocolVersion":1,)"},
             {"operation", R"("operation":"extractAndInspect",)"},
             {"aafPath", R"("aafPath":"\/in\/film.omf",)"},
             {"workDirectory", R"("workDirectory":"\/out",)"},
             {"recoverProToolsTrueFades", R"("recoverProToolsTrueFades":true,)"},
             {"removeProToolsSampleAccurateEditFragments",
              R"(,"removeProToolsSampleAccurateEditFragments":false)"}}) {
        EXPECT_EQ(requestError(replaced(requestJson, member, "")), key + ": missing key");
    }
}

TEST(WorkerRequest, TypesAreStrict) {
    EXPECT_EQ(requestError(replaced(requestJson, ":1,", ":1.5,")),
              "protocolVersion: the number is not whole");
    EXPECT_EQ(requestError(replaced(requestJson, ":1,", R"(:"1",)")),
              "protocolVersion: expected an integer, found a string");
    EXPECT_EQ(requestError(replaced(requestJson, ":true", ":1")),
              "recoverProToolsTrueFades: expected a boolean, found a number");
    EXPECT_EQ(requestError(replaced(requestJson, R"("\/media")", "[]")),
              "mediaSearchDirectory: expected a string, found an array");
    EXPECT_EQ(requestError("[]"), "expected an object, found an array");
}

TEST(WorkerRequest, WholeNumbersInAnyFormAreVersions) {
    EXPECT_EQ(decodeRequest(replaced(requestJson, ":1,", ":10e-1,")).protocolVersion, 1);
    EXPECT_EQ(decodeRequest(replaced(requestJson, ":1,", ":-2.0,")).protocolVersion, -2);
}

TEST(WorkerRequest, UnknownKeysAreIgnored) {
    EXPECT_EQ(decodeRequest(replaced(requestJson, "{", R"({"later":{"aafPath":[1]},)")),
              sampleRequest());
}

TEST(WorkerRequest, BlankTextIsNoRequest) {
    EXPECT_EQ(requestError(" \n"),
              "syntax error at line 2, column 1: unexpected end of input; expected '[', '{', or a "
              "literal");
}

TEST(WorkerProgress, EncodesInDocumentedOrder) {
    EXPECT_EQ(encoded(Progress{"opening", 0.05, std::nullopt}),
              R"({"phase":"opening","fraction":0.05})");
    EXPECT_EQ(encoded(Progress{"done", 1.0, "all/that"}),
              R"({"phase":"done","fraction":1,"detail":"all\/that"})");
}

TEST(WorkerProgress, DecodesWithoutDetailInAnyOrder) {
    EXPECT_EQ(decodeProgress(R"({"fraction":1,"phase":"done"})"),
              (Progress{"done", 1.0, std::nullopt}));
    EXPECT_EQ(decodeProgress(R"({"detail":"d","fraction":1.5e-1,"phase":"x"})"),
              (Progress{"x", 0.15, "d"}));
}

TEST(WorkerProgress, MissingKeysAreNamed) {
    EXPECT_EQ(errorOf(decodeProgress, R"({"phase":"x"})"), "fraction: missing key");
    EXPECT_EQ(errorOf(decodeProgress, R"({"fraction":0})"), "phase: missing key");
}

TEST(WorkerProgress, AFractionThatIsNotFiniteCannotBeEncoded) {
    try {
        (void)encodeProgress({"x", std::nan(""), std::nullopt});
        FAIL();
    } catch (const JsonEncodingError& error) {
        EXPECT_STREQ(error.what(), "cannot encode fraction: the number is not finite");
    }
}

Result sampleResult() {
    Result result;
    result.timeline.sourceAAF = AAFURL{"file:///film.omf"};
    result.timeline.clock.timelineZero = AAFTimecodeAddress(1, 0, 0, 0, AAFTimecodeRate::fps25());
    result.diagnostics = {"Bento 1", "two/lines\n"};
    return result;
}

constexpr const char* timelineJson =
    R"({"clock":{"editRate":{"denominator":1,"numerator":25},)"
    R"("timecodeRate":{"dropFrame":false,"exactRate":{"denominator":1,"numerator":25},)"
    R"("nominalFramesPerSecond":25},"timelineZero":{"frames":0,"hours":1,"minutes":0,)"
    R"("rate":{"dropFrame":false,"exactRate":{"denominator":1,"numerator":25},)"
    R"("nominalFramesPerSecond":25},"seconds":0}},"essences":[],"events":[],)"
    R"("sourceAAF":"file:\/\/\/film.omf","tracks":[],"unsupportedFeatures":[]})";

std::string resultJson(const std::string& digests) {
    return std::string(R"({"diagnostics":["Bento 1","two\/lines\n"],)") + digests +
           R"("protocolVersion":1,"timeline":)" + timelineJson + "}";
}

std::string encoded(const Result& result) {
    StringSink sink;
    encodeResult(result, sink);
    testing::keepEncoded("result", sink.text);
    return sink.text;
}

TEST(WorkerResult, EncodesWithSortedKeysAndNothingAfterIt) {
    EXPECT_EQ(encoded(sampleResult()), resultJson(""));
}

TEST(WorkerResult, DigestsAreSortedAndEscaped) {
    Result result = sampleResult();
    result.embeddedMediaSHA256 = std::map<std::string, std::string>{{"b/c", "2"}, {"a\"", "1"}};
    EXPECT_EQ(encoded(result), resultJson(R"("embeddedMediaSHA256":{"a\"":"1","b\/c":"2"},)"));
    EXPECT_EQ(decodeResult(encoded(result)), result);
}

TEST(WorkerResult, WithoutDigestsTheyAreAbsent) {
    EXPECT_EQ(decodeResult(resultJson("")), sampleResult());
    EXPECT_EQ(decodeResult(resultJson(R"("embeddedMediaSHA256":null,)")), sampleResult());
}

TEST(WorkerResult, EmptyDigestsArePresent) {
    EXPECT_EQ(decodeResult(resultJson(R"("embeddedMediaSHA256":{},)")).embeddedMediaSHA256,
              (std::map<std::string, std::string>{}));
}

TEST(WorkerResult, MissingKeysAreNamed) {
    const auto decode = [](std::string_view json) { return decodeResult(json); };
    EXPECT_EQ(errorOf(decode, replaced(resultJson(""), R"("protocolVersion":1,)", "")),
              "protocolVersion: missing key");
    EXPECT_EQ(errorOf(decode, R"({"protocolVersion":1,"diagnostics":[]})"),
              "timeline: missing key");
    EXPECT_EQ(
        errorOf(decode, std::string(R"({"protocolVersion":1,"timeline":)") + timelineJson + "}"),
        "diagnostics: missing key");
    EXPECT_EQ(errorOf(decode, replaced(resultJson(""), R"("events":[],)", "")),
              "timeline.events: missing key");
}

TEST(WorkerResult, DecodingValidatesTheTimeline) {
    const std::string json =
        replaced(resultJson(""), R"("editRate":{"denominator":1,"numerator":25})",
                 R"("editRate":{"denominator":1,"numerator":-25})");
    try {
        (void)decodeResult(json);
        FAIL();
    } catch (const AAFRawTimelineValidation::Failure& failure) {
        EXPECT_STREQ(failure.what(), "AAF raw model: invalid-edit-rate (clock)");
    }
    EXPECT_EQ(decodeResult(json, TimelineChecks::none).timeline.clock.editRate, AAFRational(-25));
}

/// Fails the test when anything is written.
class UntouchedSink final : public JsonSink {
  public:
    void write(std::string_view bytes) override { FAIL() << bytes; }
};

TEST(WorkerResult, WhatCannotBeEncodedWritesNothing) {
    Result result = sampleResult();
    for (int index = 0; index < 5000; ++index) {
        result.timeline.events.push_back({.id = "event " + std::to_string(index)});
    }
    result.timeline.events[3].fixedClipGain = std::numeric_limits<double>::infinity();
    UntouchedSink sink;
    try {
        encodeResult(result, sink);
        FAIL();
    } catch (const JsonEncodingError& error) {
        EXPECT_STREQ(error.what(),
                     "cannot encode timeline.events[3].fixedClipGain: the number is not finite");
    }
}

TEST(WorkerRequest, SaysHowMuchMemoryTheWorkerMayTake) {
    Request request = sampleRequest();
    request.memoryLimit = 402'653'184;
    const std::string json = encoded(request);
    EXPECT_EQ(json, replaced(requestJson, "false}", R"(false,"memoryLimit":402653184})"));
    EXPECT_EQ(decodeRequest(json), request);
    EXPECT_EQ(requestError(replaced(requestJson, "false}", R"(false,"memoryLimit":"all"})")),
              "memoryLimit: expected an integer, found a string");
}

TEST(WorkerRequest, NamesTheExtensionsItAsksFor) {
    Request request = sampleRequest();
    request.extensions = {"lossPlaces", "later"};
    const std::string json = encoded(request);
    EXPECT_EQ(json,
              replaced(requestJson, "false}", R"(false,"extensions":["lossPlaces","later"]})"));
    EXPECT_EQ(decodeRequest(json), request);
    request.extensions.emplace();
    EXPECT_EQ(encoded(request), replaced(requestJson, "false}", R"(false,"extensions":[]})"));
    EXPECT_EQ(requestError(replaced(requestJson, "false}", R"(false,"extensions":[1]})")),
              "extensions[0]: expected a string, found a number");
}

AAFWorkerExtensions::Contents sampleContents() {
    return {.mediaLengths = {{.essenceID = "e", .frames = 96'000}},
            .unusedMedia = 1,
            .unusedNames = {"Kick"},
            .unusedBytes = 1'044,
            .renderedEffects = 2,
            .nestedGroups = 3};
}

AAFWorkerExtensions::Provenance sampleProvenance() {
    return {.containerVersion = "1.0",
            .modelVersion = "2.0",
            .bigEndian = true,
            .applications = {{.company = "A House", .product = "Desk", .version = "8"}, {}},
            .peakMemory = 4'096};
}

TEST(WorkerExtensions, EveryFieldIsKeptAndAbsentOnesAreLeftOut) {
    AAFWorkerExtensions extensions;
    extensions.lossPlaces = AAFWorkerExtensions::LossPlaces{{{.kind = LossKind::transitionAsCut,
                                                              .trackID = "omf-track-1",
                                                              .trackName = "Atmo",
                                                              .trackIndex = 2,
                                                              .start = AAFRational(1, 2),
                                                              .duration = AAFRational(3),
                                                              .cut = AAFRational(2),
                                                              .clipObject = 7,
                                                              .clipName = "Rain"},
                                                             {}}};
    extensions.compositions =
        AAFWorkerExtensions::Compositions{{{.object = 9, .slotCount = 4, .isRead = true}}};
    extensions.embeddedMedia = AAFWorkerExtensions::EmbeddedMedia{
        .unusedCount = 1,
        .unusedNames = {"Kick"},
        .separateFiles = {{.essenceID = "e"}, {.essenceID = "f", .path = "/out/f.wav"}}};
    extensions.dates = AAFWorkerExtensions::Dates{.lastModified = 4'294'967'295};
    extensions.reels = AAFWorkerExtensions::Reels{
        {{.essenceID = "e",
          .mobID = "m",
          .name = "TAPE 7",
          .start = AAFRational(7, 2),
          .timecode =
              AAFWorkerExtensions::ReelTimecode{90'000, 30, true, AAFRational(30'000, 1001)}},
         {.essenceID = "f", .mobID = "n"}}};
    extensions.contents = sampleContents();
    extensions.masterMobs = AAFWorkerExtensions::MasterMobs{
        {{.mobID = "a", .name = "Take 1"}, {.mobID = "b"}}, {1, -1}};
    extensions.provenance = sampleProvenance();
    extensions.sampleData = AAFWorkerExtensions::SampleData{
        {{.essenceID = "e", .sampleBytes = 3, .bigEndian = true, .pieces = {{7, 9}, {20, 30}}}}};
    extensions.omf1 = AAFWorkerExtensions::OlderModel{.version = "1.0"};
    Result result;
    result.extensions = extensions;
    result.timeline.clock = {AAFRational(25), AAFTimecodeRate::fps25(),
                             AAFTimecodeAddress(0, 0, 0, 0, AAFTimecodeRate::fps25())};
    result.timeline.sourceAAF.text = "file:///mix.omf";
    StringSink sink;
    encodeResult(result, sink);
    testing::keepEncoded("result", sink.text);
    EXPECT_NE(
        sink.text.find(
            R"("extensions":{"compositions":{"compositions":[{"isRead":true,"object":9,)"
            R"("slotCount":4}]},"contents":{"mediaLengths":[{"essenceID":"e","frames":96000}],)"
            R"("nestedGroups":3,"renderedEffects":2,"unusedBytes":1044,"unusedMedia":1,)"
            R"("unusedNames":["Kick"]},"dates":{"lastModified":4294967295},"embeddedMedia":{"separateFiles":[{"essenceID":"e"},)"
            R"({"essenceID":"f","path":"\/out\/f.wav"}],)"
            R"("unusedCount":1,"unusedNames":["Kick"]},"lossPlaces":{"places":[{"clipName":"Rain",)"
            R"("clipObject":7,"cut":{"denominator":1,"numerator":2},)"
            R"("duration":{"denominator":1,"numerator":3},"kind":"transitionAsCut",)"
            R"("start":{"denominator":2,"numerator":1},"trackID":"omf-track-1","trackIndex":2,)"
            R"("trackName":"Atmo"},{"kind":"other"}]},)"
            R"("masterMobs":{"masterMobs":[{"mobID":"a","name":"Take 1"},{"mobID":"b"}],)"
            R"("ofEvents":[1,-1]},"omf1":{"version":"1.0"},)"
            R"("provenance":{"applications":[{"company":"A House","product":"Desk",)"
            R"("version":"8"},{}],"bigEndian":true,"containerVersion":"1.0",)"
            R"("modelVersion":"2.0","peakMemory":4096},)"
            R"("reels":{"reels":[{"essenceID":"e",)"
            R"("mobID":"m","name":"TAPE 7","start":{"denominator":2,"numerator":7},)"
            R"("timecode":{"dropFrame":true,"editRate":{"denominator":1001,"numerator":30000},)"
            R"("framesPerSecond":30,"start":90000}},)"
            R"({"essenceID":"f","mobID":"n","start":{"denominator":1,"numerator":0}}]},)"
            R"("sampleData":{"samples":[{"bigEndian":true,"essenceID":"e",)"
            R"("pieces":[{"length":9,"offset":7},{"length":30,"offset":20}],)"
            R"("sampleBytes":3}]}},)"
            R"("protocolVersion":1)"),
        std::string::npos)
        << sink.text;
    EXPECT_EQ(decodeResult(sink.text), result);
}

}  // namespace
}  // namespace trellant
