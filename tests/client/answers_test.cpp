// SPDX-License-Identifier: Apache-2.0
// Workers that end well and what they wrote: a result, or something else.
#include "misbehaving_worker/answers.h"

#include "client_fixture.h"

namespace trellant::testing {

namespace {

/// An event of a track that the timeline does not have.
std::string timelineWithoutTrack() {
    return timelineText(
        "lost",
        R"([{"channelRole":"left","clipMuted":false,"duration":{"denominator":1,"numerator":1},)"
        R"("essenceID":"e1","fixedClipGain":1,"id":"ev1","sourceStartSample":0,)"
        R"("timelineStart":{"denominator":1,"numerator":0},"trackID":"t1"}])");
}

class ClientAnswers : public ClientTest {
  protected:
    void expectInvalid(const std::string& output, const std::string& reason) const {
        expectFault(act({.output = output}), InvalidResponse{reason});
    }
};

TEST_F(ClientAnswers, RunGivesTheWholeResult) {
    std::string text = resultText(timelineText("Reel"), R"("first","second")");
    text.insert(1, R"("embeddedMediaSHA256":{"a.wav":"00ff"},)");
    const Result result = valueOf(act({.output = text}));
    EXPECT_EQ(result.protocolVersion, 1);
    EXPECT_EQ(result.timeline.compositionName, "Reel");
    EXPECT_EQ(result.timeline.sourceAAF, AAFURL{"file:///film.omf"});
    EXPECT_EQ(result.timeline.clock.editRate, AAFRational(25));
    EXPECT_EQ(result.diagnostics, (std::vector<std::string>{"first", "second"}));
    EXPECT_EQ(result.embeddedMediaSHA256, (std::map<std::string, std::string>{{"a.wav", "00ff"}}));
    workers_.expectGone("acts");
}

TEST_F(ClientAnswers, VersionTwoIsAMismatchThoughItDecodes) {
    expectInvalid(resultText(timelineText("Reel"), "", "2"), "protocol version mismatch");
}

TEST_F(ClientAnswers, VersionZeroIsAMismatch) {
    expectInvalid(resultText(timelineText("Reel"), "", "0"), "protocol version mismatch");
}

TEST_F(ClientAnswers, NothingIsNoResult) {
    expectInvalid("",
                  "syntax error at line 1, column 1: unexpected end of input; expected '[', '{', "
                  "or a literal");
}

TEST_F(ClientAnswers, TextIsNoResult) {
    expectInvalid("done", "syntax error at line 1, column 1: invalid literal");
}

TEST_F(ClientAnswers, CutAnswerIsNoResult) {
    const std::string whole = resultText(timelineText("Reel"));
    for (const std::size_t size : {std::size_t{1}, whole.size() / 2, whole.size() - 1}) {
        const auto outcome = outcomeOf(act({.output = whole.substr(0, size)}));
        ASSERT_TRUE(outcome.fault.has_value()) << outcome.description;
        EXPECT_TRUE(std::holds_alternative<InvalidResponse>(*outcome.fault)) << outcome.description;
        EXPECT_TRUE(
            outcome.description.starts_with("helper returned an invalid response: syntax "
                                            "error at line 1, column "))
            << outcome.description;
    }
}

TEST_F(ClientAnswers, MissingKeyIsNamed) {
    expectInvalid(R"({"protocolVersion":1,"timeline":)" + timelineText("Reel") + "}",
                  "diagnostics: missing key");
}

TEST_F(ClientAnswers, TwoResultsAreNoResult) {
    const std::string whole = resultText(timelineText("Reel"));
    const auto outcome = outcomeOf(act({.output = whole + whole}));
    ASSERT_TRUE(outcome.fault.has_value()) << outcome.description;
    EXPECT_TRUE(std::holds_alternative<InvalidResponse>(*outcome.fault)) << outcome.description;
}

TEST_F(ClientAnswers, LineFeedAfterTheResultIsHarmless) {
    EXPECT_EQ(
        valueOf(act({.output = resultText(timelineText("Reel")) + "\n"})).timeline.compositionName,
        "Reel");
}

TEST_F(ClientAnswers, TimelineThatFailsValidationIsNoResult) {
    expectInvalid(resultText(timelineWithoutTrack()),
                  "AAF raw model: missing-track-reference (event[0])");
}

TEST_F(ClientAnswers, TimelineIsGivenAsWrittenWithoutChecks) {
    const Act act{.output = resultText(timelineWithoutTrack())};
    const Result result = valueOf(client("acts").run(act.request(), {}, {}, TimelineChecks::none));
    EXPECT_EQ(result.timeline.compositionName, "lost");
    ASSERT_EQ(result.timeline.events.size(), 1U);
    EXPECT_EQ(result.timeline.events[0].trackID, "t1");
}

TEST_F(ClientAnswers, ShapesAreCheckedAlsoWithoutChecks) {
    const Act act{.output = R"({"protocolVersion":1,"diagnostics":[]})"};
    expectFault(client("acts").run(act.request(), {}, {}, TimelineChecks::none),
                InvalidResponse{"timeline: missing key"});
}

TEST_F(ClientAnswers, AnswerOfExactlyTheLimitIsTaken) {
    const std::string text = resultText(timelineText("Reel"));
    AAFWorkerClient limited = client("acts");
    limited.resultLimit = text.size();
    EXPECT_EQ(valueOf(limited.run(Act{.output = text}.request())).timeline.compositionName, "Reel");
}

TEST_F(ClientAnswers, AnswerOfOneByteMoreThanTheLimitIsNot) {
    const std::string text = resultText(timelineText("Reel"));
    AAFWorkerClient limited = client("acts");
    limited.resultLimit = text.size() - 1;
    expectFault(limited.run(Act{.output = text}.request()),
                InvalidResponse{"longer than " + std::to_string(text.size() - 1) + " bytes"});
    workers_.expectGone("acts");
}

TEST_F(ClientAnswers, LimitOfNothingStillTellsAFailure) {
    AAFWorkerClient limited = client("acts");
    limited.resultLimit = 0;
    expectFault(limited.run(Act{.errors = {"no\n"}, .status = 2}.request()), NonZeroExit{2, "no"});
}

TEST_F(ClientAnswers, EndlessAnswerIsEndedAtTheLimit) {
    AAFWorkerClient limited = client("floods-output-without-end");
    limited.resultLimit = 1'000'000;
    expectFault(limited.run(plainRequest()), InvalidResponse{"longer than 1000000 bytes"});
    workers_.expectGone("floods-output-without-end");
}

}  // namespace

}  // namespace trellant::testing
