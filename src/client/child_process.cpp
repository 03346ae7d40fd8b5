// SPDX-License-Identifier: Apache-2.0
#include "child_process.h"

#include <trellant/base/printable_path.h>
#include <trellant/base/program_start.h>
#include <trellant/base/system_call_error.h>
#include <trellant/base/system_error_text.h>
#include <trellant/client/errors.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#ifdef __linux__
#include <sys/resource.h>
#include <sys/syscall.h>
#endif

namespace trellant {

namespace {

/// How long a worker may take to end by itself once asked; half of what a cancelled call has.
constexpr int graceMilliseconds = 400;
/// How often to look where the system does not tell of the end.
constexpr int lookMilliseconds = 5;

using LaunchFailed = AAFWorkerClientError::LaunchFailed;

ProgramStart prepared(const ChildStreams& streams) {
    try {
        return ProgramStart({.input = streams.input.number(),
                             .output = streams.output.number(),
                             .errors = streams.errors.number()});
    } catch (const SystemCallError& error) {
        throw AAFWorkerClientError::launchFailed(error.what(), LaunchFailed::Cause::systemRefused);
    }
}

LaunchFailed::Cause causeOf(int errorNumber) noexcept {
    switch (errorNumber) {
        case ENOENT:
        case ENOTDIR:
            return LaunchFailed::Cause::workerNotFound;
        case EACCES:
        case EPERM:
        case ENOEXEC:
        case EISDIR:
        case ELOOP:
        case ELIBBAD:
            return LaunchFailed::Cause::workerNotExecutable;
        case EAGAIN:
        case ENOMEM:
        case EMFILE:
        case ENFILE:
            return LaunchFailed::Cause::systemRefused;
        default:
            return LaunchFailed::Cause::other;
    }
}

[[noreturn]] void failStart(const std::filesystem::path& executable, int errorNumber) {
    std::error_code ignored;
    if (errorNumber == EACCES && std::filesystem::is_directory(executable, ignored)) {
        errorNumber = EISDIR;
    }
    throw AAFWorkerClientError::launchFailed("cannot start \"" +
                                                 printablePath(executable.string()) +
                                                 "\": " + systemErrorText(errorNumber),
                                             causeOf(errorNumber));
}

FileDescriptor openEndNotice([[maybe_unused]] pid_t process) noexcept {
#ifdef SYS_pidfd_open
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
#else
    return {};
#endif
}

}  // namespace

ChildProcess::ChildProcess(const std::filesystem::path& executable, ChildStreams streams) {
    const ProgramStart start = prepared(streams);
    try {
        process_ = start.start({executable.string()});
    } catch (const SystemCallError& error) {
        failStart(executable, error.errorNumber());
    }
    endNotice_ = openEndNotice(process_);
}

ChildProcess::~ChildProcess() {
    if (reaped_) {
        return;
    }
    signal(SIGTERM);
    waitForEnd(graceMilliseconds);
    signal(SIGKILL);
    waitForEnd(graceMilliseconds);
    // One that is stuck in the system does not end even so; the host must not be stuck with it.
    if (hasEnded()) {
        reap();
    }
}

void ChildProcess::limitMemory([[maybe_unused]] std::uint64_t bytes) const {
#ifdef __linux__
    rlimit present{};
    int failure = ::prlimit(process_, RLIMIT_DATA, nullptr, &present);
    if (failure == 0) {
        const auto limit = std::min<rlim_t>(bytes, present.rlim_max);
        const rlimit wanted{limit, limit};
        failure = ::prlimit(process_, RLIMIT_DATA, &wanted, nullptr);
    }
    // One that has ended already needs no limit.
    if (failure != 0 && errno != ESRCH) {
        throw AAFWorkerClientError::launchFailed(
            "cannot limit the memory of the helper: " + systemErrorText(errno),
            LaunchFailed::Cause::systemRefused);
    }
#endif
}

/// The group too, because a worker may be a script whose programs hold the pipes.
void ChildProcess::signal(int number) noexcept {
    if (!hasEnded()) {
        ::kill(process_, number);
    }
    // Once somebody else has reaped the worker, its number may be anybody's.
    if (!lost_) {
        ::kill(-process_, number);
    }
}

bool ChildProcess::hasEnded() noexcept {
    if (lost_) {
        return true;
    }
    siginfo_t information{};
    int outcome = 0;
    do {
        outcome =
            ::waitid(P_PID, static_cast<id_t>(process_), &information, WEXITED | WNOHANG | WNOWAIT);
    } while (outcome != 0 && errno == EINTR);
    // Any other failure means that the host has reaped it, and nothing is left to wait for.
    lost_ = lost_ || outcome != 0;
    return lost_ || information.si_pid == process_;
}

void ChildProcess::waitForEnd(int milliseconds) noexcept {
    if (endNotice_.isOpen()) {
        pollfd notice{.fd = endNotice_.number(), .events = POLLIN, .revents = 0};
        ::poll(&notice, 1, milliseconds);
        return;
    }
    for (int waited = 0; waited < milliseconds && !hasEnded(); waited += lookMilliseconds) {
        ::poll(nullptr, 0, lookMilliseconds);
    }
}

ChildEnd ChildProcess::reap() noexcept {
    reaped_ = true;
    if (lost_) {
        return {};
    }
    int status = 0;
    pid_t reaped = 0;
    do {
        reaped = ::waitpid(process_, &status, 0);
    } while (reaped < 0 && errno == EINTR);
    if (reaped != process_) {
        return {};
    }
    return {WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status)};
}

}  // namespace trellant
