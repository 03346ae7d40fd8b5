// SPDX-License-Identifier: Apache-2.0
// What a request may ask for beside the timeline.
#include "worker_fixture.h"

namespace trellant::testing {

namespace {

class HelperExtensions : public WorkerTest {
  protected:
    [[nodiscard]] WorkerRun runAsking(const std::string& names,
                                      std::string_view operation = "inspect") const {
        auto request = requestFor(operation, source_, path("work"));
        request.more = ",\"extensions\":" + names;
        return run(request);
    }
    /// The answer to the same request without extensions, with these added where their key belongs.
    [[nodiscard]] std::string resultWith(const std::string& extensions,
                                         std::string_view fileURL = {}) const {
        std::string result = oneClipResult(jsonFileURL(source_), fileURL);
        const std::size_t at = result.find("\"protocolVersion\"");
        EXPECT_NE(at, std::string::npos);
        return result.insert(at, "\"extensions\":" + extensions + ",");
    }

    std::string source_ = oneClipFile();
};

TEST_F(HelperExtensions, AreAnEmptyObjectWhereNoneIsKnown) {
    for (const std::string names : {"[]", "[\"later\"]", "[\"LossPlaces\"]"}) {
        const auto answer = runAsking(names);
        EXPECT_EQ(answer.output, resultWith("{}")) << names;
        EXPECT_EQ(answer.errors, oneSlotProgress());
        EXPECT_EQ(answer.status, 0);
    }
}

TEST_F(HelperExtensions, NullIsNoWish) {
    const auto answer = runAsking("null");
    EXPECT_EQ(answer.output, oneClipResult(jsonFileURL(source_)));
}

TEST_F(HelperExtensions, OfAnotherTypeAreNoRequest) {
    expectRejected(runAsking("\"lossPlaces\""),
                   "invalid request JSON: extensions: expected an array, found a string");
    expectRejected(runAsking("[1]"),
                   "invalid request JSON: extensions[0]: expected a string, found a number");
}

TEST_F(HelperExtensions, CompositionsAreListed) {
    EXPECT_EQ(runAsking("[\"compositions\",\"compositions\"]").output,
              resultWith("{\"compositions\":{\"compositions\":[{\"isRead\":true,"
                         "\"mobID\":\"000000C0-00000000-00000001\",\"name\":\"Piece\","
                         "\"object\":13,\"slotCount\":1}]}}"));
}

TEST_F(HelperExtensions, WithoutLossesThereAreNoPlaces) {
    EXPECT_EQ(runAsking("[\"lossPlaces\"]").output, resultWith("{\"lossPlaces\":{\"places\":[]}}"));
}

TEST_F(HelperExtensions, MediaThatAreAllPlayedAreNotUnused) {
    const std::string none =
        "{\"embeddedMedia\":{\"separateFiles\":[],\"unusedCount\":0,\"unusedNames\":[]}}";
    EXPECT_EQ(runAsking("[\"embeddedMedia\"]").output, resultWith(none));
    EXPECT_EQ(runAsking("[\"embeddedMedia\"]", "extractAndInspect").output,
              resultWith(none, jsonFileURL(path("work/Tone.wav"))));
}

TEST_F(HelperExtensions, TheDateIsWhatTheFileSays) {
    OmfBuilder omf = oneClipDocument();
    omf.head().bytes("OMFI:HEAD:LastModified", hex("00 CA 9A 3B 01"));
    writeFile(source_, omf.build());
    EXPECT_EQ(runAsking("[\"dates\"]").output,
              resultWith("{\"dates\":{\"lastModified\":1000000000}}"));
}

TEST_F(HelperExtensions, AFileWithoutTapesNamesNoReel) {
    EXPECT_EQ(runAsking("[\"reels\"]").output, resultWith("{\"reels\":{\"reels\":[]}}"));
}

TEST_F(HelperExtensions, AClipThatNamesItsFilePlaysNoMasterMob) {
    EXPECT_EQ(runAsking("[\"masterMobs\"]").output,
              resultWith("{\"masterMobs\":{\"masterMobs\":[],\"ofEvents\":[-1]}}"));
}

// The one source is a WAVE of 480 samples; a second one that nothing plays is as long in bytes as
// its text, an effect has its result beside it, and a group stands apart.
TEST_F(HelperExtensions, ContentsAreWhatTheTimelineDoesNotSay) {
    OmfBuilder omf = oneClipDocument();
    omf.waveMedia(MobID{9, 9, 9}, bytesOf("no audio at all"));
    ObjectBuilder rendered = omf.effect({.effectID = "x:Reverb", .length = 10});
    rendered.ref("OMFI:EFFE:FinalRendering", omf.clip({.length = 10, .source = {1, 2, 3}}));
    omf.effect({.effectID = "x:Reverb", .length = 10});
    omf.nestedScope({});
    writeFile(source_, omf.build());
    const std::string answer = runAsking("[\"contents\"]").output;
    EXPECT_NE(answer.find(R"("extensions":{"contents":{"mediaLengths":[)"
                          R"({"essenceID":"omf-essence-00000001-00000002-00000003",)"
                          R"("frames":480}],"nestedGroups":1,"renderedEffects":1,)"
                          R"("unusedBytes":15,"unusedMedia":1,"unusedNames":["object )"),
              std::string::npos)
        << answer;
}

TEST_F(HelperExtensions, ProvenanceIsWhatTheHeaderSays) {
    OmfBuilder omf = oneClipDocument();
    ObjectBuilder first = omf.object("IDNT");
    first.string("OMFI:IDNT:ProductName", "Desk");
    ObjectBuilder second = omf.object("IDNT");
    second.string("OMFI:IDNT:CompanyName", "A House");
    second.string("OMFI:IDNT:ProductVersionString", "8.1");
    omf.head().bytes("OMFI:HEAD:Version", hex("02 01"));
    omf.head().refs("OMFI:HEAD:IdentificationList", {first, second});
    writeFile(source_, omf.build());
    const std::string answer = runAsking("[\"provenance\"]").output;
    EXPECT_NE(answer.find(R"("provenance":{"applications":[{"product":"Desk"},)"
                          R"({"company":"A House","version":"8.1"}],"bigEndian":false,)"
                          R"("containerVersion":"2.0","modelVersion":"2.1","peakMemory":)"),
              std::string::npos)
        << answer;
}

// 480 samples of two bytes stand behind the 44 bytes of a WAVE head, somewhere in the file.
TEST_F(HelperExtensions, SampleDataAreWhereTheSamplesLie) {
    const std::string answer = runAsking("[\"sampleData\"]").output;
    EXPECT_NE(answer.find(R"("sampleData":{"samples":[{"bigEndian":false,)"
                          R"("essenceID":"omf-essence-00000001-00000002-00000003",)"
                          R"("pieces":[{"length":960,"offset":)"),
              std::string::npos)
        << answer;
    EXPECT_NE(answer.find(R"(],"sampleBytes":2}]})"), std::string::npos) << answer;
}

TEST_F(HelperExtensions, AFileWithoutADateSaysNone) {
    EXPECT_EQ(runAsking("[\"dates\"]").output, resultWith("{\"dates\":{}}"));
}

}  // namespace

}  // namespace trellant::testing
