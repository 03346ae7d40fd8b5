// SPDX-License-Identifier: Apache-2.0
// Workers that die at one stage of a call or never end it.
#include "client_fixture.h"
#include "misbehaving_worker/answers.h"

#include <csignal>

namespace trellant::testing {

namespace {

class ClientDeaths : public ClientTest {
  protected:
    /// Requests the stop when the worker is where it says it is, from this thread.
    void expectStopEnds(const std::string& behaviour, AAFWorkerClient::Progress progress) const {
        StopSource stop;
        auto call = client(behaviour).run(plainRequest(), std::move(progress), stop.get_token());
        workers_.awaitAnnouncement(behaviour);
        stop.request_stop();
        expectCancelled(std::move(call));
        workers_.expectGone(behaviour);
    }
};

const Progress half{"half", 0.5, std::nullopt};
constexpr const char* halfLine = "TRELLANT-AAF-PROGRESS {\"phase\":\"half\",\"fraction\":0.5}\n";

TEST_F(ClientDeaths, InTheMiddleOfTheRequest) {
    for (const std::string behaviour : {"dies-while-reading", "is-killed-while-reading"}) {
        expectFault(client(behaviour).run(largeRequest()),
                    LaunchFailed{"cannot write the request: Broken pipe"});
        workers_.expectGone(behaviour);
    }
}

TEST_F(ClientDeaths, InTheMiddleOfASmallRequestIsJudgedByTheStatus) {
    expectFault(client("dies-while-reading").run(plainRequest()), NonZeroExit{5, ""});
    expectFault(client("is-killed-while-reading").run(plainRequest()), NonZeroExit{SIGKILL, ""});
}

TEST_F(ClientDeaths, AfterItsProgress) {
    std::vector<Progress> seen;
    const auto note = [&](const Progress& progress) { seen.push_back(progress); };
    expectFault(act({.errors = {halfLine}, .signal = SIGKILL}, note), NonZeroExit{SIGKILL, ""});
    EXPECT_EQ(seen, std::vector<Progress>{half});
    expectFault(act({.errors = {halfLine, "no room\n"}, .status = 2}, note),
                NonZeroExit{2, "no room"});
    EXPECT_EQ(seen, (std::vector<Progress>{half, half}));
}

TEST_F(ClientDeaths, AfterHalfOfItsAnswer) {
    const std::string answer = resultText(timelineText("Reel"));
    const std::string part = answer.substr(0, answer.size() / 2);
    expectFault(act({.errors = {"no room\n"}, .output = part, .status = 2}),
                NonZeroExit{2, "no room"});
    expectFault(act({.output = part, .signal = SIGSEGV}), NonZeroExit{SIGSEGV, ""});
}

TEST_F(ClientDeaths, NeverAfterAWholeAnswer) {
    expectCancelEnds("answers-and-sleeps");
}

TEST_F(ClientDeaths, NeverWhileItFloodsTheErrors) {
    expectCancelEnds("floods-errors-without-end");
    expectCancelEnds("floods-errors-without-end", largeRequest());
}

TEST_F(ClientDeaths, NeverWhileItReports) {
    expectStopEnds("progresses-without-end", {});
    expectStopEnds("progresses-without-end", [](const Progress&) {});
}

TEST_F(ClientDeaths, AStrangerWhoHoldsThePipesIsNotWaitedForOnceTheCallIsStopped) {
    // The worker has answered and ended; only the one that it left behind keeps the pipes open, in
    // a session of its own, where the end of the worker's group does not reach it.
    expectStopEnds("leaves-stranger-on-the-pipes", {});
}

}  // namespace

}  // namespace trellant::testing
