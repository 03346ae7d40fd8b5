// SPDX-License-Identifier: Apache-2.0
// All that a call can give, and its notice that it is over.
#include "client_fixture.h"
#include "misbehaving_worker/answers.h"

#include <atomic>
#include <stdexcept>
#include <thread>

namespace trellant::testing {

namespace {

class ClientWholeAnswers : public ClientTest {
  protected:
    static Act talking() {
        return {.errors = {"TRELLANT-AAF-PROGRESS {\"phase\":\"half\",\"fraction\":0.5}\n", "one\n",
                           "two\n"},
                .output = resultText(timelineText("Reel"), R"("a remark")")};
    }
    [[nodiscard]] std::future<AAFWorkerAnswer> ask(const Act& act,
                                                   AAFWorkerCallOptions options = {}) const {
        return client("acts").ask(act.request(), std::move(options));
    }

    std::atomic<int> completions_{0};
    std::function<void()> completion_ = [this] { ++completions_; };
};

TEST_F(ClientWholeAnswers, HoldTheRemarksAndTheLogLinesOfARunThatWentWell) {
    const AAFWorkerAnswer answer = valueOf(ask(talking()));
    EXPECT_EQ(answer.result.timeline.compositionName, "Reel");
    EXPECT_EQ(answer.result.diagnostics, std::vector<std::string>{"a remark"});
    EXPECT_EQ(answer.logLines, (std::vector<std::string>{"one", "two"}));
}

TEST_F(ClientWholeAnswers, HoldTheLastSixtyLogLines) {
    Act wordy = talking();
    std::vector<std::string> expected;
    for (int line = 1; line <= 70; ++line) {
        wordy.errors.push_back(std::to_string(line) + "\n");
        if (line > 10) {
            expected.push_back(std::to_string(line));
        }
    }
    EXPECT_EQ(valueOf(ask(wordy)).logLines, expected);
}

TEST_F(ClientWholeAnswers, TakeProgressChecksAndStop) {
    std::vector<std::string> phases;
    EXPECT_EQ(
        valueOf(
            ask(talking(),
                {.progress = [&](const Progress& progress) { phases.push_back(progress.phase); }}))
            .result.diagnostics.size(),
        1U);
    EXPECT_EQ(phases, std::vector<std::string>{"half"});

    Act invalid = talking();
    const auto at = invalid.output.find(R"("hours":1)");
    invalid.output.replace(at, 9, R"("hours":99)");
    EXPECT_TRUE(outcomeOf(ask(invalid)).fault.has_value());
    EXPECT_EQ(valueOf(ask(invalid, {.checks = TimelineChecks::none}))
                  .result.timeline.clock.timelineZero.hours,
              99);

    StopSource stop;
    stop.request_stop();
    expectCancelled(ask(talking(), {.stop = stop.get_token()}));
}

TEST_F(ClientWholeAnswers, CompletionComesOnceAfterAllProgress) {
    std::vector<std::string> order;
    (void)valueOf(ask(
        talking(), {.progress = [&](const Progress& progress) { order.push_back(progress.phase); },
                    .completion = [&] { order.emplace_back("completed"); }}));
    EXPECT_EQ(order, (std::vector<std::string>{"half", "completed"}));
}

TEST_F(ClientWholeAnswers, CompletionComesWithoutALookAtTheFuture) {
    std::promise<void> completed;
    const auto call = ask(talking(), {.completion = [&] { completed.set_value(); }});
    EXPECT_EQ(completed.get_future().wait_for(std::chrono::seconds(60)), std::future_status::ready);
}

TEST_F(ClientWholeAnswers, CompletionComesHoweverTheCallEnds) {
    expectFault(ask({.errors = {"no\n"}, .status = 2}, {.completion = completion_}),
                NonZeroExit{2, "no"});
    EXPECT_EQ(completions_, 1);

    AAFWorkerClient lost;
    lost.helperURLProvider = nullptr;
    expectFault(lost.ask(plainRequest(), {.completion = completion_}), HelperMissing{});
    EXPECT_EQ(completions_, 2);

    StopSource stop;
    auto call =
        client("sleeps").ask(plainRequest(), {.stop = stop.get_token(), .completion = completion_});
    workers_.awaitAnnouncement("sleeps");
    EXPECT_EQ(completions_, 2);
    stop.request_stop();
    expectCancelled(std::move(call));
    EXPECT_EQ(completions_, 3);
}

TEST_F(ClientWholeAnswers, WhatTheCompletionThrowsComesOutOfTheFuture) {
    EXPECT_EQ(
        outcomeOf(ask(talking(), {.completion = [] { throw std::out_of_range("enough"); }})).other,
        "enough");
}

TEST_F(ClientWholeAnswers, RequestOfAnInspectionIsThatOfInspect) {
    const Request request = AAFWorkerClient::inspection("/film.omf", "/work", "/media");
    const AAFTimeline timeline = valueOf(client("answers").inspect("/film.omf", "/work", "/media"));
    EXPECT_EQ(timeline.compositionName, encodeRequest(request));
    EXPECT_EQ(valueOf(client("answers").ask(request)).result.timeline, timeline);
}

}  // namespace

}  // namespace trellant::testing
