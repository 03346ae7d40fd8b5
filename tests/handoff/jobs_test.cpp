// SPDX-License-Identifier: Apache-2.0
#include <trellant/client/errors.h>
#include <trellant/handoff/jobs.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>

namespace trellant {
namespace {

TEST(Jobs, AreEachDoneOnce) {
    std::mutex mutex;
    std::multiset<std::size_t> done;
    WorkProgress progress;
    progress.begin("Working", 1'000);
    runJobs(
        100,
        [&](std::size_t number, const std::function<void()>& /*whileWaiting*/) {
            const std::lock_guard lock(mutex);
            done.insert(number);
            return std::uint64_t{10};
        },
        progress);
    EXPECT_EQ(done.size(), 100U);
    EXPECT_EQ(std::set<std::size_t>(done.begin(), done.end()).size(), 100U);
    EXPECT_EQ(*done.rbegin(), 99U);
    EXPECT_EQ(progress.bytes(), 1'000U);
}

TEST(Jobs, MayTellOfBytesAsTheyGo) {
    WorkProgress progress;
    progress.begin("Working", 100);
    std::atomic<std::uint64_t> underWay{0};
    runJobs(
        4,
        [&](std::size_t number, const std::function<void()>& /*whileWaiting*/) {
            underWay += number;
            return std::uint64_t{10};
        },
        progress, &underWay);
    // Four times 10, and 0 + 1 + 2 + 3.
    EXPECT_EQ(progress.bytes(), 46U);
}

TEST(Jobs, AreNotMoreAtATimeThanThereAreProcessors) {
    std::atomic<unsigned> now{0};
    std::atomic<unsigned> most{0};
    WorkProgress progress;
    runJobs(
        20,
        [&](std::size_t /*number*/, const std::function<void()>& /*whileWaiting*/) {
            const unsigned here = ++now;
            unsigned before = most.load();
            while (before < here && !most.compare_exchange_weak(before, here)) {
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            --now;
            return std::uint64_t{0};
        },
        progress);
    EXPECT_LE(most.load(), std::max(1U, std::thread::hardware_concurrency()));
    EXPECT_GE(most.load(), 1U);
}

TEST(Jobs, NoneAreDoneAtOnce) {
    WorkProgress progress;
    runJobs(
        0,
        [](std::size_t /*number*/, const std::function<void()>& /*whileWaiting*/) -> std::uint64_t {
            throw std::runtime_error("called");
        },
        progress);
    EXPECT_EQ(progress.bytes(), 0U);
}

TEST(Jobs, WhatOneThrowsEndsAll) {
    std::atomic<int> done{0};
    WorkProgress progress;
    try {
        runJobs(
            10'000,
            [&done](std::size_t number, const std::function<void()>& whileWaiting) {
                if (number == 3) {
                    throw std::runtime_error("the third");
                }
                std::this_thread::sleep_for(std::chrono::microseconds(100));
                whileWaiting();
                ++done;
                return std::uint64_t{0};
            },
            progress);
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "the third");
    }
    EXPECT_LT(done.load(), 9'999);
}

TEST(Jobs, AStopEndsThoseThatWait) {
    StopSource source;
    WorkProgress progress(source.get_token());
    std::atomic<bool> begun{false};
    std::thread stopper([&] {
        while (!begun.load()) {
            std::this_thread::yield();
        }
        source.request_stop();
    });
    EXPECT_THROW(runJobs(
                     2,
                     [&begun](std::size_t /*number*/, const std::function<void()>& whileWaiting) {
                         begun = true;
                         for (;;) {
                             whileWaiting();
                             std::this_thread::sleep_for(std::chrono::milliseconds(1));
                         }
                         return std::uint64_t{0};
                     },
                     progress),
                 AAFCancellationError);
    stopper.join();
}

}  // namespace
}  // namespace trellant
