// SPDX-License-Identifier: Apache-2.0
#include "file_making.h"

#include "rendered.h"

#include <trellant/io/errors.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {
namespace {

using exchange::PlannedTrack;
using render::FileMaking;
using render::FileOrder;

void goOn() {}

class Making : public ::testing::Test, public RenderedPlan {
  protected:
    [[nodiscard]] FileOrder orderOf(const std::string& path, std::uint64_t frames) const {
        return {.path = path,
                .form = {.format = {16, false}, .channels = 2, .frames = frames},
                .chunks = [] { return Bytes(); },
                .sound = [this] { return render::mixSound(plan, 0); }};
    }
    /// Made by so many threads.
    [[nodiscard]] FileMaking::Result made(FileMaking& making, std::size_t threads) const {
        std::vector<std::thread> others;
        for (std::size_t i = 1; i < threads; ++i) {
            others.emplace_back([&making] { making.work(goOn, [](std::uint64_t) {}); });
        }
        making.work(goOn, [](std::uint64_t) {});
        for (std::thread& other : others) {
            other.join();
        }
        return making.result();
    }

    TemporaryDirectory target_;
};

/// Blocks have 65,536 frames: two tracks of which one begins in the second block and pans.
TEST_F(Making, GivesTheSameBytesHoweverManyTakePart) {
    const std::vector<std::int16_t> loud(150'000, 30'000);
    PlannedTrack& one = addTrack();
    addClip(one, addMedia(loud), 0, 150'000).gain = 2;
    one.pan = 0;
    PlannedTrack& other = addTrack();
    addClip(other, addMedia(loud), 50'000, 75'000);
    other.panAutomation = AAFAutomationEnvelope{AAFAutomationInterpolation::linear(),
                                                {{AAFRational(0), 0}, {AAFRational(1), 1}}};
    Bytes first;
    for (const std::size_t threads : {1U, 2U, 5U}) {
        const std::string path = target_.file(std::to_string(threads));
        FileMaking making(orderOf(path, 150'000), played);
        const FileMaking::Result result = made(making, threads);
        // To the left all of the first track is beyond full scale.
        EXPECT_EQ(result.cutSamples, 150'000U);
        const Bytes bytes = readFile(path);
        EXPECT_EQ(bytes.size(), 44U + 600'000U);
        first = first.empty() ? bytes : first;
        EXPECT_EQ(bytes, first) << threads;
    }
}

TEST_F(Making, AFileWithoutSamplesIsAHead) {
    addTrack();
    const std::string path = target_.file("empty");
    FileMaking making(orderOf(path, 0), played);
    const FileMaking::Result result = made(making, 3);
    EXPECT_EQ(readFile(path).size(), 44U);
    EXPECT_EQ(result.sha256.size(), 64U);
    EXPECT_EQ(result.cutSamples, 0U);
}

TEST_F(Making, EndsWhereItIsNotWanted) {
    addTrack();
    FileMaking making(orderOf(target_.file("stopped"), 150'000), played);
    EXPECT_THROW(making.work([] { throw std::runtime_error("stop"); }, [](std::uint64_t) {}),
                 std::runtime_error);
}

/// The other has the first block and fails; who waits for it is told by the one who waits for both.
TEST_F(Making, WhoWaitsForABlockThatFailedIsToldToStop) {
    addTrack();
    std::atomic<bool> failed{false};
    FileOrder order = orderOf(target_.file("failed"), 150'000);
    order.chunks = [&failed]() -> Bytes {
        failed = true;
        throw std::runtime_error("no chunks");
    };
    FileMaking making(order, played);
    std::thread first(
        [&] { EXPECT_THROW(making.work(goOn, [](std::uint64_t) {}), std::runtime_error); });
    while (!failed) {
        std::this_thread::yield();
    }
    EXPECT_THROW(making.work([] { throw std::runtime_error("stop"); }, [](std::uint64_t) {}),
                 std::runtime_error);
    first.join();
}

TEST_F(Making, NothingIsReplaced) {
    addTrack();
    const std::string path = writeFile(target_.file("there"), hex("01"));
    FileMaking making(orderOf(path, 1), played);
    EXPECT_THROW(making.work(goOn, [](std::uint64_t) {}), FileSystemError);
    EXPECT_EQ(readFile(path), hex("01"));
}

}  // namespace
}  // namespace trellant::testing
