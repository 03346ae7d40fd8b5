// SPDX-License-Identifier: Apache-2.0
// Many pieces of work, at most as many at a time as there are processors.
#pragma once

#include <trellant/handoff/work_progress.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace [[gnu::visibility("default")]] trellant {

/// Does one piece of work. `whileWaiting` is to be called about ten times a second; it throws when
/// the work is not wanted any more. Returns the bytes that are done then. Runs on any thread.
using Job =
    std::function<std::uint64_t(std::size_t number, const std::function<void()>& whileWaiting)>;

/// Does jobs 0 to `count` - 1 and shows the bytes in `progress`, in which a step has begun. Throws
/// AAFCancellationError after a stop, and what a job throws; no job is under way then. `underWay`,
/// where given, holds further bytes that count as done: those of jobs that tell as they go.
void runJobs(std::size_t count, const Job& job, WorkProgress& progress,
             const std::atomic<std::uint64_t>* underWay = nullptr);

}  // namespace trellant
