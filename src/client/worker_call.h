// SPDX-License-Identifier: Apache-2.0
// One call: a worker is started, fed, listened to and seen to its end on the calling thread, while
// the progress goes out on another.
#pragma once

#include <trellant/base/cancellation.h>
#include <trellant/client/worker_client.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace trellant {

struct WorkerCall {
    const std::filesystem::path& executable;
    /// The request's bytes.
    const std::string& request;
    const AAFWorkerClient::Progress& progress;
    const StopToken& stop;
    /// Bytes of output that are taken at most.
    std::uint64_t resultLimit;
};

/// What the worker wrote to its standard output, once it has ended with status 0. Throws
/// AAFWorkerClientError, AAFCancellationError and what `progress` throws; the worker has ended and
/// is reaped in each case. The thread must have SIGPIPE blocked.
[[nodiscard]] std::string answerTo(const WorkerCall& call);

}  // namespace trellant
