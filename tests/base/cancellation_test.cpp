// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/cancellation.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace trellant {
namespace {

TEST(Cancellation, ATokenWithoutASourceIsNeverAskedToStop) {
    const StopToken token;
    EXPECT_FALSE(token.stop_possible());
    EXPECT_FALSE(token.stop_requested());
}

TEST(Cancellation, EveryTokenOfASourceTellsItsStop) {
    StopSource source;
    const StopToken before = source.get_token();
    const StopToken copy = before;
    EXPECT_TRUE(before.stop_possible());
    EXPECT_FALSE(before.stop_requested());
    EXPECT_FALSE(source.stop_requested());
    EXPECT_TRUE(source.request_stop());
    EXPECT_TRUE(source.stop_requested());
    EXPECT_TRUE(before.stop_requested());
    EXPECT_TRUE(copy.stop_requested());
    EXPECT_TRUE(source.get_token().stop_requested());
}

TEST(Cancellation, SourcesDoNotStopOneAnother) {
    StopSource first;
    StopSource second;
    EXPECT_TRUE(first.request_stop());
    EXPECT_FALSE(second.get_token().stop_requested());
}

TEST(Cancellation, OnlyTheFirstRequestIsOne) {
    StopSource source;
    StopSource copy = source;
    EXPECT_TRUE(source.request_stop());
    EXPECT_FALSE(source.request_stop());
    EXPECT_FALSE(copy.request_stop());
    EXPECT_TRUE(copy.stop_requested());
}

TEST(Cancellation, ATokenOutlivesItsSource) {
    std::optional<StopSource> source(std::in_place);
    const StopToken token = source->get_token();
    EXPECT_TRUE(source->request_stop());
    source.reset();
    EXPECT_TRUE(token.stop_requested());
}

TEST(StopCallback, IsCalledOnceByTheFirstRequestOnItsThread) {
    StopSource source;
    std::vector<std::thread::id> calls;
    const StopCallback callback(source.get_token(),
                                [&] { calls.push_back(std::this_thread::get_id()); });
    EXPECT_TRUE(calls.empty());
    std::thread::id requester;
    std::thread([&] {
        requester = std::this_thread::get_id();
        source.request_stop();
    }).join();
    source.request_stop();
    EXPECT_EQ(calls, std::vector{requester});
}

TEST(StopCallback, SeesTheStopAsRequested) {
    StopSource source;
    const StopToken token = source.get_token();
    bool seen = false;
    const StopCallback callback(token, [&] { seen = token.stop_requested(); });
    source.request_stop();
    EXPECT_TRUE(seen);
}

TEST(StopCallback, IsCalledAtOnceWhenTheStopWasRequestedBefore) {
    StopSource source;
    source.request_stop();
    int calls = 0;
    {
        const StopCallback callback(source.get_token(), [&] { ++calls; });
        EXPECT_EQ(calls, 1);
    }
    EXPECT_EQ(calls, 1);
}

TEST(StopCallback, IsNeverCalledWithoutASource) {
    int calls = 0;
    {
        const StopCallback callback(StopToken(), [&] { ++calls; });
    }
    EXPECT_EQ(calls, 0);
}

TEST(StopCallback, IsNotCalledOnceItIsGone) {
    StopSource source;
    std::vector<int> calls;
    {
        std::optional<StopCallback<std::function<void()>>> first;
        std::optional<StopCallback<std::function<void()>>> middle;
        std::optional<StopCallback<std::function<void()>>> last;
        first.emplace(source.get_token(), [&] { calls.push_back(1); });
        middle.emplace(source.get_token(), [&] { calls.push_back(2); });
        last.emplace(source.get_token(), [&] { calls.push_back(3); });
        middle.reset();
        last.reset();
        source.request_stop();
    }
    EXPECT_EQ(calls, std::vector{1});
}

TEST(StopCallback, AllThatAreLeftAreCalledWhicheverWentBefore) {
    for (int gone = 0; gone < 4; ++gone) {
        StopSource source;
        int sum = 0;
        std::vector<std::unique_ptr<StopCallback<std::function<void()>>>> callbacks;
        for (int value = 0; value < 4; ++value) {
            callbacks.push_back(std::make_unique<StopCallback<std::function<void()>>>(
                source.get_token(), [&sum, value] { sum += 1 << value; }));
        }
        callbacks[static_cast<std::size_t>(gone)].reset();
        source.request_stop();
        EXPECT_EQ(sum, 15 - (1 << gone)) << gone;
    }
}

TEST(StopCallback, MayEndItselfWhileItIsCalled) {
    StopSource source;
    std::optional<StopCallback<std::function<void()>>> callback;
    int calls = 0;
    callback.emplace(source.get_token(), [&] {
        ++calls;
        callback.reset();
    });
    EXPECT_TRUE(source.request_stop());
    EXPECT_FALSE(callback.has_value());
    EXPECT_EQ(calls, 1);
}

TEST(StopCallback, MayEndOthersWhileItIsCalled) {
    StopSource source;
    int calls = 0;
    using Callback = StopCallback<std::function<void()>>;
    std::optional<Callback> left;
    std::optional<Callback> right;
    left.emplace(source.get_token(), [&] {
        ++calls;
        right.reset();
    });
    right.emplace(source.get_token(), [&] {
        ++calls;
        left.reset();
    });
    source.request_stop();
    EXPECT_EQ(calls, 1);
    EXPECT_NE(left.has_value(), right.has_value());
}

TEST(StopCallback, MayTakeItsSourceAway) {
    std::optional<StopSource> source(std::in_place);
    const StopCallback callback(source->get_token(), [&] { source.reset(); });
    EXPECT_TRUE(source->request_stop());
    EXPECT_FALSE(source.has_value());
}

TEST(StopCallback, OneThatIsMadeWithinACallIsCalledToo) {
    StopSource source;
    int calls = 0;
    const StopCallback outer(source.get_token(), [&] {
        const StopCallback inner(source.get_token(), [&] { ++calls; });
        EXPECT_EQ(calls, 1);
    });
    source.request_stop();
    EXPECT_EQ(calls, 1);
}

TEST(StopCallback, ItsEndWaitsForACallOnAnotherThread) {
    StopSource source;
    std::promise<void> entered;
    std::promise<void> mayReturn;
    std::atomic<bool> returned{false};
    std::optional<StopCallback<std::function<void()>>> callback;
    callback.emplace(source.get_token(), [&, leave = mayReturn.get_future().share()] {
        entered.set_value();
        leave.wait();
        returned = true;
    });
    std::thread requester([&] { source.request_stop(); });
    entered.get_future().wait();
    std::atomic<bool> ending{false};
    bool returnedBeforeEnd = false;
    std::thread remover([&] {
        ending = true;
        callback.reset();
        returnedBeforeEnd = returned;
    });
    while (!ending) {
        std::this_thread::yield();
    }
    mayReturn.set_value();
    remover.join();
    requester.join();
    EXPECT_TRUE(returnedBeforeEnd);
}

TEST(StopCallback, TheEndOfOneDoesNotWaitForTheCallOfAnother) {
    StopSource source;
    std::promise<void> entered;
    std::promise<void> mayReturn;
    using Callback = StopCallback<std::function<void()>>;
    // The one that is registered last is called first.
    std::optional<Callback> other(std::in_place, source.get_token(), [] {});
    const Callback callback(source.get_token(), [&] {
        entered.set_value();
        mayReturn.get_future().wait();
    });
    std::thread requester([&] { source.request_stop(); });
    entered.get_future().wait();
    other.reset();
    mayReturn.set_value();
    requester.join();
    EXPECT_FALSE(other.has_value());
}

/// What a stop and an end that race may do: the callback is called or not, never after its end.
TEST(StopCallback, NeverRunsAfterItsEndWhoeverIsFirst) {
    for (int round = 0; round < 2000; ++round) {
        StopSource source;
        auto alive = std::make_unique<int>(1);
        int called = 0;
        std::thread requester([copy = source]() mutable { copy.request_stop(); });
        {
            const StopCallback callback(source.get_token(), [&] { called += *alive; });
        }
        alive.reset();
        requester.join();
        ASSERT_TRUE(source.stop_requested());
        ASSERT_LE(called, 1);
    }
}

TEST(StopCallback, RequestsThatRaceCallItOnce) {
    for (int round = 0; round < 500; ++round) {
        StopSource source;
        std::atomic<int> calls{0};
        std::atomic<int> firsts{0};
        const StopCallback callback(source.get_token(), [&] { ++calls; });
        const auto request = [&] { firsts += source.request_stop() ? 1 : 0; };
        std::thread left(request);
        std::thread right(request);
        left.join();
        right.join();
        ASSERT_EQ(calls, 1);
        ASSERT_EQ(firsts, 1);
    }
}

}  // namespace
}  // namespace trellant
