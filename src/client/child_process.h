// SPDX-License-Identifier: Apache-2.0
// A worker process: how it is started, watched and ended.
#pragma once

#include <trellant/base/file_descriptor.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <sys/types.h>

namespace trellant {

/// The ends that become the worker's standard streams.
struct ChildStreams {
    FileDescriptor input;
    FileDescriptor output;
    FileDescriptor errors;
};

/// How a worker ended.
struct ChildEnd {
    /// Exit status, or the number of the signal that ended it; absent when the host reaps all its
    /// children itself (or ignores SIGCHLD) and so took the answer.
    std::optional<std::int32_t> status;
};

/// One started process and its group. Whoever leaves it behind ends it: the destructor asks it to
/// end, kills what is left after a grace, and reaps it, all within a second.
class ChildProcess {
  public:
    /// Starts `executable` without arguments, in the host's directory and environment, with signals
    /// as a fresh program meets them and no descriptor but its streams. It leads a process group of
    /// its own, so that a key pressed at the host's terminal is the host's to handle. Throws
    /// AAFWorkerClientError launchFailed.
    ChildProcess(const std::filesystem::path& executable, ChildStreams streams);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ChildProcess(ChildProcess&&) = delete;
    ChildProcess& operator=(ChildProcess&&) = delete;

    /// Lets it have no more than so many bytes of data, on Linux. Throws AAFWorkerClientError
    /// launchFailed.
    void limitMemory(std::uint64_t bytes) const;

    /// Becomes readable when the process ends; a negative number where the system has no such
    /// thing, then hasEnded() must be asked now and then.
    [[nodiscard]] int endNotice() const noexcept { return endNotice_.number(); }
    /// True from its end on; it stays to be reaped.
    [[nodiscard]] bool hasEnded() noexcept;
    /// Waits for the end and takes its status; call once.
    ChildEnd reap() noexcept;

  private:
    /// Returns at its end, or when the time is over.
    void waitForEnd(int milliseconds) noexcept;

    void signal(int number) noexcept;

    pid_t process_ = -1;
    bool reaped_ = false;
    /// Somebody else has reaped it.
    bool lost_ = false;
    FileDescriptor endNotice_;
};

}  // namespace trellant
