// SPDX-License-Identifier: Apache-2.0
// A stop ends every call, whatever its worker does, and never as a failure of the worker.
#include "client_fixture.h"

#include <filesystem>
#include <thread>

namespace trellant::testing {

namespace {

using ClientCancellation = ClientTest;

TEST_F(ClientCancellation, SleepingWorkerIsEnded) {
    expectCancelEnds("sleeps");
}

TEST_F(ClientCancellation, WorkerThatIgnoresThePoliteSignalIsEnded) {
    expectCancelEnds("ignores-sigterm");
}

TEST_F(ClientCancellation, WorkerThatLeftItsProcessGroupIsEnded) {
    expectCancelEnds("leaves-its-group");
}

TEST_F(ClientCancellation, WorkerIsAskedPolitelyFirst) {
    expectCancelEnds("notes-sigterm");
    EXPECT_TRUE(std::filesystem::exists(workers_.directory().file("notes-sigterm.sigterm")));
}

TEST_F(ClientCancellation, WorkerThatClosedItsPipesIsEnded) {
    expectCancelEnds("closes-pipes");
}

TEST_F(ClientCancellation, WorkerThatClosedItsInputIsEnded) {
    expectCancelEnds("closes-input");
}

TEST_F(ClientCancellation, WorkerThatClosedItsOutputIsEnded) {
    expectCancelEnds("closes-output");
}

TEST_F(ClientCancellation, WorkerThatNeverReadsIsEnded) {
    expectCancelEnds("never-reads");
}

TEST_F(ClientCancellation, WorkerThatNeverReadsALargeRequestIsEnded) {
    expectCancelEnds("never-reads", largeRequest());
}

TEST_F(ClientCancellation, FloodingWorkerAndWhatItStartedAreEnded) {
    expectCancelEnds("floods-without-end");
    workers_.expectGrandchildrenEnd("floods-without-end");
}

TEST_F(ClientCancellation, FloodingWorkerThatNeverReadsALargeRequestIsEnded) {
    expectCancelEnds("floods-output-without-end", largeRequest());
}

TEST_F(ClientCancellation, GrandchildThatHoldsThePipesDoesNotHoldTheCall) {
    expectCancelEnds("leaves-grandchild-and-sleeps");
    workers_.expectGrandchildrenEnd("leaves-grandchild-and-sleeps");
}

TEST_F(ClientCancellation, GrandchildOfAWorkerThatEndedDoesNotHoldTheCall) {
    // The worker has ended, its status is 0 and half of the answer is still to come.
    StopSource stop;
    auto call = client("answers-by-halves").run(plainRequest(), {}, stop.get_token());
    workers_.awaitAnnouncement("answers-by-halves", ".grandchildren");
    stop.request_stop();
    expectCancelled(std::move(call));
    workers_.expectGone("answers-by-halves");
    workers_.expectGrandchildrenEnd("answers-by-halves");
}

TEST_F(ClientCancellation, InspectIsCancelledInTheSameWay) {
    StopSource stop;
    auto call = client("sleeps").inspect("/film.omf", "/work", std::nullopt, {}, stop.get_token());
    workers_.awaitAnnouncement("sleeps");
    stop.request_stop();
    expectCancelled(std::move(call));
    workers_.expectGone("sleeps");
}

TEST_F(ClientCancellation, StopRequestedBeforeTheCallStartsNoWorker) {
    StopSource stop;
    stop.request_stop();
    expectCancelled(client("answers").run(plainRequest(), {}, stop.get_token()));
    expectCancelled(
        client("answers").inspect("/film.omf", "/work", std::nullopt, {}, stop.get_token()));
    workers_.expectNeverStarted("answers");
}

TEST_F(ClientCancellation, StopRequestedByTheProviderStartsNoWorker) {
    StopSource stop;
    AAFWorkerClient stopping = client("answers");
    stopping.helperURLProvider = [&,
                                  provider = stopping.helperURLProvider](const std::string& name) {
        stop.request_stop();
        return provider(name);
    };
    expectCancelled(stopping.run(plainRequest(), {}, stop.get_token()));
    workers_.expectNeverStarted("answers");
}

TEST_F(ClientCancellation, StopRequestedAtOnceNeverFailsOtherwise) {
    // Wherever the call is by then.
    for (int round = 0; round < 50; ++round) {
        StopSource stop;
        auto call = client("sleeps").run(plainRequest(), {}, stop.get_token());
        for (int pause = 0; pause < round; ++pause) {
            std::this_thread::yield();
        }
        stop.request_stop();
        expectCancelled(std::move(call));
    }
}

TEST_F(ClientCancellation, StopAfterTheResultChangesNothing) {
    StopSource stop;
    auto call = client("answers").run(plainRequest(), {}, stop.get_token());
    call.wait();
    stop.request_stop();
    EXPECT_EQ(valueOf(std::move(call)).diagnostics.size(), 1U);
}

TEST_F(ClientCancellation, StopThatIsNeverRequestedChangesNothing) {
    const StopSource stop;
    EXPECT_EQ(
        valueOf(client("answers").run(plainRequest(), {}, stop.get_token())).diagnostics.size(),
        1U);
    expectFault(act({.status = 2}, {}, stop.get_token()), NonZeroExit{2, ""});
}

TEST_F(ClientCancellation, OneStopEndsSeveralCalls) {
    StopSource stop;
    std::vector<std::future<Result>> calls;
    for (const std::string behaviour : {"sleeps", "never-reads", "closes-pipes"}) {
        calls.push_back(client(behaviour).run(plainRequest(), {}, stop.get_token()));
    }
    for (const std::string behaviour : {"sleeps", "never-reads", "closes-pipes"}) {
        workers_.awaitAnnouncement(behaviour);
    }
    stop.request_stop();
    for (std::future<Result>& call : calls) {
        expectCancelled(std::move(call));
    }
}

TEST_F(ClientCancellation, StopOfOneCallLeavesAnotherAlone) {
    StopSource stop;
    auto other = client("waits").run(plainRequest());
    expectCancelEnds("sleeps");
    workers_.release("waits");
    EXPECT_EQ(valueOf(std::move(other)).diagnostics.size(), 1U);
}

}  // namespace

}  // namespace trellant::testing
