// SPDX-License-Identifier: Apache-2.0
// Progress lines and the callback that takes them.
#include "client_fixture.h"
#include "misbehaving_worker/answers.h"

#include <array>
#include <csignal>
#include <stdexcept>
#include <thread>

namespace trellant::testing {

namespace {

std::string progressLineOf(std::string_view json) {
    return std::string("TRELLANT-AAF-PROGRESS ").append(json).append("\n");
}

Act reporting() {
    return {.errors = {progressLineOf(R"({"phase":"opening","fraction":0.05})"),
                       progressLineOf(R"({"phase":"resolving","fraction":0.31})") + "log line\n" +
                           progressLineOf(R"({"fraction":1e0,"detail":"a \"b\"","phase":"done"})")},
            .output = resultText(timelineText("Reel"))};
}

/// What progresses-and-sleeps says before it sleeps.
const Progress ready{"ready", 0.5, std::nullopt};

class ClientProgress : public ClientTest {
  protected:
    template <class Callback>
    auto callSleeper(Callback callback, StopToken stop = {}) const {
        return client("progresses-and-sleeps")
            .run(plainRequest(), std::move(callback), std::move(stop));
    }
};

TEST_F(ClientProgress, EachRecordComesInTheOrderWritten) {
    std::vector<Progress> seen;
    const Result result =
        valueOf(act(reporting(), [&](const Progress& progress) { seen.push_back(progress); }));
    EXPECT_EQ(result.timeline.compositionName, "Reel");
    EXPECT_EQ(seen, (std::vector<Progress>{{"opening", 0.05, std::nullopt},
                                           {"resolving", 0.31, std::nullopt},
                                           {"done", 1, "a \"b\""}}));
}

TEST_F(ClientProgress, CallWithoutCallbackIgnoresThem) {
    EXPECT_EQ(valueOf(act(reporting())).timeline.compositionName, "Reel");
}

TEST_F(ClientProgress, InspectReportsToo) {
    std::promise<Progress> seen;
    StopSource stop;
    auto call =
        client("progresses-and-sleeps")
            .inspect(
                "/film.omf", "/work", std::nullopt,
                [&](const Progress& progress) { seen.set_value(progress); }, stop.get_token());
    EXPECT_EQ(valueOf(seen.get_future()), ready);
    stop.request_stop();
    expectCancelled(std::move(call));
}

TEST_F(ClientProgress, RecordsComeWhileTheWorkerRuns) {
    // The worker sleeps from then on: the callback is not put off to its end.
    std::promise<Progress> seen;
    StopSource stop;
    auto call =
        callSleeper([&](const Progress& progress) { seen.set_value(progress); }, stop.get_token());
    EXPECT_EQ(valueOf(seen.get_future()), ready);
    stop.request_stop();
    expectCancelled(std::move(call));
    workers_.expectGone("progresses-and-sleeps");
}

TEST_F(ClientProgress, CallbackIsCalledOnOneThreadThatIsTheCallsOwn) {
    std::vector<std::thread::id> threads;
    (void)valueOf(
        act(reporting(), [&](const Progress&) { threads.push_back(std::this_thread::get_id()); }));
    ASSERT_EQ(threads.size(), 3U);
    EXPECT_NE(threads[0], std::this_thread::get_id());
    EXPECT_EQ(threads[1], threads[0]);
    EXPECT_EQ(threads[2], threads[0]);
}

TEST_F(ClientProgress, SignalsOfTheHostDoNotReachTheCallbacksThread) {
    constexpr std::array<int, 7> hostSignals{SIGHUP,  SIGINT,  SIGPIPE, SIGTERM,
                                             SIGCHLD, SIGUSR1, SIGALRM};
    std::vector<int> unblocked{-1};
    (void)valueOf(act(reporting(), [&](const Progress&) {
        unblocked.clear();
        sigset_t mask;
        ::pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        for (const int signal : hostSignals) {
            if (::sigismember(&mask, signal) == 0) {
                unblocked.push_back(signal);
            }
        }
    }));
    EXPECT_EQ(unblocked, std::vector<int>{});
}

TEST_F(ClientProgress, WhatTheCallbackThrowsEndsTheWorkerAndComesOutOfTheFuture) {
    auto call = callSleeper([](const Progress&) { throw std::out_of_range("enough"); });
    EXPECT_EQ(outcomeOf(std::move(call)).other, "enough");
    workers_.expectGone("progresses-and-sleeps");
    EXPECT_THROW(
        (void)callSleeper([](const Progress&) { throw std::out_of_range("enough"); }).get(),
        std::out_of_range);
}

TEST_F(ClientProgress, WhatTheCallbackThrowsCountsAlsoWhenTheAnswerIsGood) {
    auto call = act(reporting(), [](const Progress& progress) {
        if (progress.phase == "done") {
            throw std::out_of_range("enough");
        }
    });
    EXPECT_EQ(outcomeOf(std::move(call)).other, "enough");
    workers_.expectGone("acts");
}

TEST_F(ClientProgress, CallbackIsNotCalledAgainAfterItThrew) {
    int calls = 0;
    auto call = act(reporting(), [&](const Progress&) {
        ++calls;
        throw std::out_of_range("enough");
    });
    EXPECT_EQ(outcomeOf(std::move(call)).other, "enough");
    EXPECT_EQ(calls, 1);
}

TEST_F(ClientProgress, CallbackMayRequestTheStop) {
    StopSource stop;
    expectCancelled(callSleeper([&](const Progress&) { stop.request_stop(); }, stop.get_token()));
    workers_.expectGone("progresses-and-sleeps");
}

TEST_F(ClientProgress, StopRequestedByTheLastCallbackCancelsAGoodAnswer) {
    StopSource stop;
    expectCancelled(act(
        reporting(),
        [&](const Progress& progress) {
            if (progress.phase == "done") {
                stop.request_stop();
            }
        },
        stop.get_token()));
    workers_.expectGone("acts");
}

TEST_F(ClientProgress, CallbackMayCallAnotherWorker) {
    std::string inner;
    (void)valueOf(act(reporting(), [&](const Progress& progress) {
        if (progress.phase == "done") {
            inner = valueOf(client("answers").run(plainRequest())).diagnostics.at(0);
        }
    }));
    EXPECT_EQ(inner, encodeRequest(plainRequest()));
}

TEST_F(ClientProgress, CallbackOutlivesTheCallersCopy) {
    auto shared = std::make_shared<std::promise<Progress>>();
    auto seen = shared->get_future();
    StopSource stop;
    auto call = callSleeper([shared](const Progress& progress) { shared->set_value(progress); },
                            stop.get_token());
    shared.reset();
    EXPECT_EQ(valueOf(std::move(seen)), ready);
    stop.request_stop();
    expectCancelled(std::move(call));
}

}  // namespace

}  // namespace trellant::testing
