// SPDX-License-Identifier: Apache-2.0
// Hundreds of megabytes from a worker, on both pipes at once.
#include "client_fixture.h"
#include "misbehaving_worker/answers.h"

namespace trellant::testing {

namespace {

using ClientFloods = ClientTest;

/// What is left of the lines after a flood.
constexpr const char* lastLines = "a\nb\nc\nd\ne\nf\ng\nh";

TEST_F(ClientFloods, BothPipesAreEmptiedWhileALargeRequestWaits) {
    expectFault(client("floods-and-fails").run(largeRequest()), NonZeroExit{3, lastLines});
    workers_.expectGone("floods-and-fails");
}

TEST_F(ClientFloods, FloodOfErrorsDoesNotHurtAGoodAnswer) {
    const Request request = largeRequest();
    EXPECT_EQ(valueOf(client("floods-errors-and-answers").run(request)).diagnostics,
              std::vector<std::string>{encodeRequest(request)});
    workers_.expectGone("floods-errors-and-answers");
}

TEST_F(ClientFloods, FloodOfOutputIsEndedAtTheLimit) {
    AAFWorkerClient limited = client("floods-and-fails");
    limited.resultLimit = floodSize / 2;
    expectFault(limited.run(largeRequest()), InvalidResponse{"longer than 100000000 bytes"});
    workers_.expectGone("floods-and-fails");
}

}  // namespace

}  // namespace trellant::testing
