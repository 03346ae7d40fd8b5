// SPDX-License-Identifier: Apache-2.0
// Callbacks that take their time, or wait for somebody who waits for the call. Neither the reading
// nor a cancellation waits for them.
#include "client_fixture.h"
#include "misbehaving_worker/answers.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace trellant::testing {

namespace {

/// A callback that, from its first record on, waits until it is released. Copies share one state,
/// which outlives the call: a callback that was left behind uses it.
class WaitingCallback {
  public:
    void operator()(const Progress& progress) const {
        const std::lock_guard entered(state_->entered);
        state_->seen.push_back(progress.phase);
        ++state_->begun;
        state_->released.wait();
        ++state_->ended;
    }
    void release() const { state_->release.set_value(); }

    void awaitFirst() const {
        ASSERT_TRUE(eventually([this] { return state_->begun > 0; }));
    }
    [[nodiscard]] bool hasEnded(int callbacks) const {
        return eventually([&] { return state_->ended == callbacks; });
    }
    [[nodiscard]] int begun() const { return state_->begun; }
    /// The phases, once nobody calls any more.
    [[nodiscard]] const std::vector<std::string>& seen() const { return state_->seen; }

  private:
    struct State {
        std::mutex entered{};
        std::promise<void> release{};
        std::shared_future<void> released{release.get_future()};
        std::vector<std::string> seen{};
        std::atomic<int> begun{0};
        std::atomic<int> ended{0};
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

class ClientSlowCallbacks : public ClientTest {
  protected:
    static Act reportingOnce() {
        return {.errors = {"TRELLANT-AAF-PROGRESS {\"phase\":\"only\",\"fraction\":0}\n"},
                .output = resultText(timelineText("Reel"))};
    }
    [[nodiscard]] std::future<Result> report(int count, std::size_t size,
                                             const WaitingCallback& callback,
                                             StopToken stop = {}) const {
        Request request;
        request.aafPath = std::to_string(count);
        request.workDirectory = std::to_string(size);
        return client("reports").run(request, callback, std::move(stop));
    }
    [[nodiscard]] bool workerIsGone(const std::string& behaviour) const {
        return eventually([&] { return workers_.areGone(behaviour); });
    }
};

TEST_F(ClientSlowCallbacks, WorkerIsReadToItsEndWhileACallbackRuns) {
    // Each of both is far more than a pipe holds.
    constexpr std::size_t size = 1'000'000;
    Act wordy = reportingOnce();
    wordy.errors.push_back(std::string(size, 'x') + "\n");
    wordy.output.append(size, ' ');
    const WaitingCallback callback;
    auto call = act(wordy, callback);
    callback.awaitFirst();
    EXPECT_TRUE(workerIsGone("acts"));
    callback.release();
    EXPECT_EQ(valueOf(std::move(call)).timeline.compositionName, "Reel");
    EXPECT_EQ(callback.seen(), std::vector<std::string>{"only"});
}

TEST_F(ClientSlowCallbacks, CallbackThatWaitsForWhoeverWaitsForTheCallHoldsNobodyUpForGood) {
    const WaitingCallback callback;
    auto call = act(reportingOnce(), callback);
    EXPECT_EQ(valueOf(std::move(call)).timeline.compositionName, "Reel");
    callback.release();
    EXPECT_TRUE(callback.hasEnded(1));
}

TEST_F(ClientSlowCallbacks, CallbackMayWaitForItsOwnCall) {
    struct Shared {
        std::promise<std::shared_future<Result>> call{};
        std::promise<std::string> name{};
    };
    const auto shared = std::make_shared<Shared>();
    const std::shared_future<Result> call =
        act(reportingOnce(), [shared](const Progress&) {
            const std::shared_future<Result> own = shared->call.get_future().get();
            shared->name.set_value(own.get().timeline.compositionName.value_or("none"));
        }).share();
    shared->call.set_value(call);
    EXPECT_EQ(valueOf(shared->name.get_future()), "Reel");
}

TEST_F(ClientSlowCallbacks, WorkerIsEndedAndTheCallCancelledWhileACallbackRuns) {
    StopSource stop;
    const WaitingCallback callback;
    auto call = client("progresses-and-sleeps").run(plainRequest(), callback, stop.get_token());
    callback.awaitFirst();
    stop.request_stop();
    EXPECT_TRUE(workerIsGone("progresses-and-sleeps"));
    expectCancelled(std::move(call));
    callback.release();
    EXPECT_TRUE(callback.hasEnded(1));
}

TEST_F(ClientSlowCallbacks, StopIsHeededWhenOnlyACallbackIsLeft) {
    StopSource stop;
    const WaitingCallback callback;
    auto call = act(reportingOnce(), callback, stop.get_token());
    callback.awaitFirst();
    EXPECT_TRUE(workerIsGone("acts"));
    stop.request_stop();
    expectCancelled(std::move(call));
    callback.release();
    EXPECT_TRUE(callback.hasEnded(1));
}

TEST_F(ClientSlowCallbacks, FailureOfTheWorkerIsToldWhileACallbackRuns) {
    const WaitingCallback callback;
    Act failing = reportingOnce();
    failing.errors.emplace_back("no room\n");
    failing.status = 2;
    expectFault(act(failing, callback), NonZeroExit{2, "no room"});
    callback.release();
    EXPECT_TRUE(callback.hasEnded(1));
}

TEST_F(ClientSlowCallbacks, NoneBeginsOnceTheFutureIsReady) {
    const WaitingCallback callback;
    auto call = report(10, 0, callback);
    callback.awaitFirst();
    workers_.release("reports");
    (void)valueOf(std::move(call));
    callback.release();
    EXPECT_TRUE(callback.hasEnded(1));
    EXPECT_EQ(callback.begun(), 1);
}

TEST_F(ClientSlowCallbacks, WhatOneThrowsThatWasLeftBehindIsLost) {
    const WaitingCallback callback;
    struct Thrower {
        WaitingCallback callback;
        void operator()(const Progress& progress) const {
            callback(progress);
            throw std::out_of_range("too late");
        }
    };
    EXPECT_EQ(valueOf(act(reportingOnce(), Thrower{callback})).timeline.compositionName, "Reel");
    callback.release();
    EXPECT_TRUE(callback.hasEnded(1));
}

TEST_F(ClientSlowCallbacks, OfManyThatWaitTheNewestComeInOrder) {
    constexpr int count = 1'500;
    constexpr int kept = 1'024;
    const WaitingCallback callback;
    auto call = report(count, 0, callback);
    callback.awaitFirst();
    workers_.release("reports");
    EXPECT_TRUE(workerIsGone("reports"));
    callback.release();
    (void)valueOf(std::move(call));
    std::vector<std::string> expected{"first"};
    for (int number = count - kept + 1; number <= count; ++number) {
        expected.push_back(std::to_string(number));
    }
    EXPECT_EQ(callback.seen(), expected);
}

TEST_F(ClientSlowCallbacks, OfLongOnesThatWaitAMebibyteIsKept) {
    // 17 phases of 60,000 bytes and what a record takes beside them are below 1,048,576 bytes, 18
    // are above.
    constexpr int count = 40;
    constexpr std::size_t size = 60'000;
    const WaitingCallback callback;
    auto call = report(count, size, callback);
    callback.awaitFirst();
    workers_.release("reports");
    EXPECT_TRUE(workerIsGone("reports"));
    callback.release();
    (void)valueOf(std::move(call));
    ASSERT_EQ(callback.seen().size(), 1U + 17U);
    EXPECT_EQ(callback.seen()[1].substr(0, 3), "24 ");
    EXPECT_EQ(callback.seen().back().substr(0, 3), "40 ");
}

}  // namespace

}  // namespace trellant::testing
