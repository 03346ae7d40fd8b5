// SPDX-License-Identifier: Apache-2.0
// The real worker under a tracer: every system call can be watched, failed, shortened, or taken as
// the moment to change the world, with the worker standing still meanwhile. Nothing hangs on
// timing.
#pragma once

#include "call_kinds.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <trellant_testing/worker_process.h>
#include <vector>

namespace trellant::testing {

/// What is done to one call: nothing, unless said.
struct Intervention {
    /// The call is not made and fails with this errno value.
    int errorNumber = 0;
    /// The call moves at most this many bytes.
    std::optional<std::uint64_t> byteLimit{};
};

/// Asked at the entry of every call, `process` being the worker's number.
using Director = std::function<Intervention(const SeenCall&, pid_t process)>;

struct TracedStart {
    std::string input{};
    CallPlaces places{};
    Director director{};
    /// Runs in the child before the worker is started; the text says what was not permitted.
    std::function<std::string()> prepare{};
    /// Descriptors that take the place of pipes of the tracer's own.
    std::optional<int> inputDescriptor{};
    std::optional<int> outputDescriptor{};
};

struct TracedRun {
    /// Outputs given by the start are empty here.
    WorkerRun run{};
    std::vector<SeenCall> calls{};
    /// Why the worker could not be run so here; empty when it was.
    std::string notPermitted{};
};

/// Why nothing can be traced here; empty when it can.
[[nodiscard]] std::string whyNotTraced();

/// Runs the worker to its end, with addresses that do not vary, so that equal runs make equal
/// calls. One that hangs is killed after a long while, which shows as a signal. Outputs may hold up
/// to a mebibyte.
[[nodiscard]] TracedRun runTraced(const TracedStart& start);

/// Tests that need the tracer, left out where there is none.
class TracedTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (const auto reason = whyNotTraced(); !reason.empty()) {
            GTEST_SKIP() << reason;
        }
    }
};

}  // namespace trellant::testing
