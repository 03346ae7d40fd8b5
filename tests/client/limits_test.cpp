// SPDX-License-Identifier: Apache-2.0
// What a worker may take of time and memory.
#include "client_fixture.h"
#include "misbehaving_worker/answers.h"

#include <filesystem>
#include <trellant_testing/byte_writer.h>

namespace trellant::testing {

namespace {

using namespace std::chrono_literals;

class ClientLimits : public ClientTest {
  protected:
    /// The worker must run when its time is over, and be gone then.
    void expectEndsInTime(const std::string& behaviour, const Request& request) const {
        AAFWorkerClient limited = client(behaviour);
        limited.timeLimit = 1'000ms;
        EXPECT_EQ(outcomeOf(limited.run(request)).other, "the time of the call is over");
        workers_.expectGone(behaviour);
    }
    /// What a worker that tells its limit of data, in KiB, says of it.
    [[nodiscard]] Outcome<Result> toldLimit(std::optional<std::uint64_t> limit) const {
        const std::string script = workers_.directory().file("worker");
        if (!std::filesystem::exists(script)) {
            writeFile(script, bytesOf("#!/bin/sh\nread -r request\nulimit -d >&2\nexit 5\n"));
            std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        }
        AAFWorkerClient limited;
        limited.helperURLProvider = [script](const std::string&) { return script; };
        limited.memoryLimit = limit;
        return outcomeOf(limited.run(plainRequest()));
    }
};

TEST_F(ClientLimits, WorkerIsEndedWhenTheTimeIsOver) {
    expectEndsInTime("sleeps", plainRequest());
    expectEndsInTime("ignores-sigterm", plainRequest());
    expectEndsInTime("never-reads", largeRequest());
    expectEndsInTime("floods-without-end", plainRequest());
}

TEST_F(ClientLimits, EndOfTheTimeIsATypeOfItsOwn) {
    AAFWorkerClient limited = client("sleeps");
    limited.timeLimit = 1ms;
    EXPECT_THROW((void)limited.inspect("/film.omf", "/work").get(), AAFTimeLimitError);
    EXPECT_THROW((void)limited.ask(plainRequest()).get(), AAFTimeLimitError);
}

TEST_F(ClientLimits, NoTimeAtAllIsOverAtOnce) {
    for (const std::chrono::milliseconds none : {0ms, -1ms, std::chrono::milliseconds::min()}) {
        AAFWorkerClient limited = client("sleeps");
        limited.timeLimit = none;
        EXPECT_EQ(outcomeOf(limited.run(plainRequest())).other, "the time of the call is over");
    }
}

TEST_F(ClientLimits, TimeThatIsNotUsedUpChangesNothing) {
    for (const std::chrono::milliseconds much : {60'000ms, std::chrono::milliseconds::max()}) {
        AAFWorkerClient limited = client("answers");
        limited.timeLimit = much;
        EXPECT_EQ(valueOf(limited.run(plainRequest())).diagnostics.size(), 1U);
    }
}

TEST_F(ClientLimits, StopComesBeforeTheEndOfTheTime) {
    StopSource stop;
    AAFWorkerClient limited = client("sleeps");
    limited.timeLimit = 60'000ms;
    auto call = limited.run(plainRequest(), {}, stop.get_token());
    workers_.awaitAnnouncement("sleeps");
    stop.request_stop();
    expectCancelled(std::move(call));
}

TEST_F(ClientLimits, WorkerHasItsLimitOfMemoryBeforeItHasItsRequest) {
    EXPECT_EQ(toldLimit(64 * 1'048'576).description, "helper exited with 5: 65536");
    for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(toldLimit(96 * 1'048'576).description, "helper exited with 5: 98304");
    }
}

TEST_F(ClientLimits, WithoutALimitTheWorkerHasThatOfTheHost) {
    const auto without = toldLimit(std::nullopt);
    EXPECT_EQ(toldLimit(std::numeric_limits<std::uint64_t>::max()).description,
              without.description);
}

}  // namespace

}  // namespace trellant::testing
