// SPDX-License-Identifier: Apache-2.0
// The real worker executable, started over pipes as a host starts it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace trellant::testing {

/// What becomes of one of the worker's two outputs.
struct OutputStream {
    /// The reader goes away once it has this many bytes; 0: it is gone before the worker starts.
    std::optional<std::size_t> readerLeavesAfter{};
    /// The worker starts without the stream.
    bool closed = false;
};

struct WorkerStart {
    /// The whole of standard input; absent: the worker starts without the stream.
    std::optional<std::string> input{};
    /// Where the worker starts; empty: where the test runs.
    std::string directory{};
    OutputStream output{};
    OutputStream errors{};
    /// Behind the program's name.
    std::vector<std::string> arguments{};
};

/// How a run ended. Exactly one of status and signal is present.
struct WorkerRun {
    std::string output{};
    std::string errors{};
    std::optional<int> status{};
    std::optional<int> signal{};
};

/// Path of the executable under test.
[[nodiscard]] std::string workerPath();

/// Runs the worker to its end. One that hangs is killed after a long while, which shows as a
/// signal.
[[nodiscard]] WorkerRun runWorker(const WorkerStart& start);

}  // namespace trellant::testing
