// SPDX-License-Identifier: Apache-2.0
// How a call asks for its worker's place.
#include "client_fixture.h"

#include <mutex>
#include <stdexcept>
#include <thread>

namespace trellant::testing {

namespace {

using HelperURLProvider = ClientTest;

TEST_F(HelperURLProvider, NoPlaceIsHelperMissing) {
    AAFWorkerClient lost;
    lost.helperURLProvider = [](const std::string&) { return std::nullopt; };
    expectFault(lost.inspect("/film.omf", "/work"), HelperMissing{});
    expectFault(lost.run(plainRequest()), HelperMissing{});
}

TEST_F(HelperURLProvider, EmptyProviderIsHelperMissing) {
    AAFWorkerClient lost;
    lost.helperURLProvider = nullptr;
    expectFault(lost.inspect("/film.omf", "/work"), HelperMissing{});
    expectFault(lost.run(plainRequest()), HelperMissing{});
}

TEST_F(HelperURLProvider, DefaultFindsNoWorkerThatIsNotInstalled) {
    AAFWorkerClient lost;
    lost.helperName = "trellant-nobody";
    expectFault(lost.inspect("/film.omf", "/work"), HelperMissing{});
}

TEST_F(HelperURLProvider, IsAskedOnceInEachCallForTheClientsWorker) {
    std::mutex mutex;
    std::vector<std::string> asked;
    std::vector<std::thread::id> threads;
    AAFWorkerClient asking = client("answers");
    asking.helperURLProvider = [&, provider = asking.helperURLProvider](const std::string& name) {
        const std::lock_guard lock(mutex);
        asked.push_back(name);
        threads.push_back(std::this_thread::get_id());
        return provider(name);
    };
    (void)valueOf(asking.inspect("/film.omf", "/work"));
    EXPECT_EQ(asked, std::vector<std::string>{"answers"});
    (void)valueOf(asking.run(plainRequest()));
    EXPECT_EQ(asked, (std::vector<std::string>{"answers", "answers"}));
    for (const std::thread::id thread : threads) {
        EXPECT_NE(thread, std::this_thread::get_id());
    }
}

TEST_F(HelperURLProvider, WhatItThrowsComesOutOfTheFuture) {
    AAFWorkerClient throwing;
    throwing.helperURLProvider = [](const std::string&) -> std::optional<std::filesystem::path> {
        throw std::out_of_range("no such place");
    };
    EXPECT_THROW((void)throwing.inspect("/film.omf", "/work").get(), std::out_of_range);
    EXPECT_EQ(outcomeOf(throwing.run(plainRequest())).other, "no such place");
}

TEST_F(HelperURLProvider, ChangeOfTheClientDoesNotReachACallUnderWay) {
    AAFWorkerClient changing = client("waits");
    auto call = changing.run(plainRequest());
    changing.helperName = "nobody";
    changing.helperURLProvider = nullptr;
    changing.resultLimit = 0;
    workers_.release("waits");
    EXPECT_EQ(valueOf(std::move(call)).diagnostics.size(), 1U);
}

TEST_F(HelperURLProvider, ClientMayGoBeforeItsCall) {
    std::future<Result> call;
    {
        const AAFWorkerClient brief = client("waits");
        call = brief.run(plainRequest());
    }
    workers_.release("waits");
    EXPECT_EQ(valueOf(std::move(call)).diagnostics.size(), 1U);
}

}  // namespace

}  // namespace trellant::testing
