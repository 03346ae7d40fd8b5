// SPDX-License-Identifier: Apache-2.0
// One call: a worker is started, fed, listened to and seen to its end on the calling thread, while
// the progress goes out on another.
#pragma once

#include "answer_text.h"
#include "time_limit.h"

#include <trellant/base/cancellation.h>
#include <trellant/client/worker_client.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace trellant {

struct WorkerCall {
    const std::filesystem::path& executable;
    /// The request's bytes.
    const std::string& request;
    const AAFWorkerClient::Progress& progress;
    const StopToken& stop;
    /// Bytes of output that are taken at most.
    std::uint64_t resultLimit;
    /// Bytes of data that the worker may have.
    std::optional<std::uint64_t> memoryLimit;
    /// When it is over, so is the call.
    const TimeLimit& timeLimit;
};

/// What a worker wrote that ended with status 0.
struct WorkerOutput {
    AnswerText answer;
    std::vector<std::string> logLines;
};

/// Throws AAFWorkerClientError, AAFTimeLimitError, AAFCancellationError and what `progress` throws;
/// the worker has ended and is reaped in each case. The thread must have SIGPIPE blocked.
[[nodiscard]] WorkerOutput answerTo(const WorkerCall& call);

}  // namespace trellant
