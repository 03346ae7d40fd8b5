// SPDX-License-Identifier: Apache-2.0
// Workers that treat their pipes in ways of their own.
#include "client_fixture.h"

#include <chrono>
#include <csignal>

namespace trellant::testing {

namespace {

class ClientPipes : public ClientTest {
  protected:
    void expectStillUnderWay(const std::future<Result>& call) const {
        EXPECT_EQ(call.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    }
};

const LaunchFailed brokenPipe{"cannot write the request: Broken pipe"};

TEST_F(ClientPipes, CallIsUnderWayUntilTheWorkerAnswers) {
    auto call = client("waits").run(plainRequest());
    workers_.awaitAnnouncement("waits");
    expectStillUnderWay(call);
    workers_.release("waits");
    EXPECT_EQ(valueOf(std::move(call)).diagnostics,
              std::vector<std::string>{encodeRequest(plainRequest())});
    workers_.expectGone("waits");
}

TEST_F(ClientPipes, WorkerThatClosedItsPipesIsWaitedFor) {
    auto call = client("closes-pipes").run(plainRequest());
    workers_.awaitAnnouncement("closes-pipes");
    expectStillUnderWay(call);
    workers_.release("closes-pipes");
    expectFault(std::move(call), NonZeroExit{6, ""});
    workers_.expectGone("closes-pipes");
}

TEST_F(ClientPipes, WorkerThatClosedItsOutputAndEndsWellGaveNoResult) {
    auto call = client("closes-output").run(plainRequest());
    workers_.awaitAnnouncement("closes-output");
    expectStillUnderWay(call);
    workers_.release("closes-output");
    expectFault(std::move(call),
                InvalidResponse{"syntax error at line 1, column 1: unexpected end of input; "
                                "expected '[', '{', or a literal"});
}

TEST_F(ClientPipes, WorkerThatDiesWithoutReadingALargeRequestFailsTheLaunch) {
    // Again and again: the end and the broken pipe come at the same moment.
    for (int round = 0; round < 100; ++round) {
        expectFault(client("dies-without-reading").run(largeRequest()), brokenPipe);
    }
    workers_.expectGone("dies-without-reading");
}

TEST_F(ClientPipes, WorkerThatDiesWithoutReadingASmallRequestIsJudgedByItsStatus) {
    for (int round = 0; round < 20; ++round) {
        expectFault(client("dies-without-reading").run(plainRequest()), NonZeroExit{7, ""});
    }
}

TEST_F(ClientPipes, WorkerThatClosesItsInputBeforeALargeRequestIsEnded) {
    expectFault(client("closes-awaited-input").run(largeRequest()), brokenPipe);
    workers_.expectGone("closes-awaited-input");
}

TEST_F(ClientPipes, AnswerIsTakenToItsEndThoughTheWorkerIsGone) {
    auto call = client("answers-by-halves").run(plainRequest());
    workers_.awaitAnnouncement("answers-by-halves", ".grandchildren");
    workers_.release("answers-by-halves");
    EXPECT_EQ(valueOf(std::move(call)).diagnostics,
              std::vector<std::string>{encodeRequest(plainRequest())});
}

TEST_F(ClientPipes, WhoElseHoldsTheErrorsIsNotWaitedFor) {
    EXPECT_EQ(valueOf(client("leaves-grandchild-on-errors").run(plainRequest())).diagnostics,
              std::vector<std::string>{encodeRequest(plainRequest())});
    workers_.expectGone("leaves-grandchild-on-errors");
}

}  // namespace

}  // namespace trellant::testing
