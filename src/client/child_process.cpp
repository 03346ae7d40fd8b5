#include "child_process.h"

#include <trellant/base/printable_text.h>
#include <trellant/base/system_error_text.h>
#include <trellant/client/errors.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#ifdef __linux__
#include <sys/syscall.h>
#endif

#ifdef __APPLE__
extern char** environ;
#endif

namespace trellant {

namespace {

/// How long a worker may take to end by itself once asked; half of what a cancelled call has.
constexpr int graceMilliseconds = 400;
/// How often to look where the system does not tell of the end.
constexpr int lookMilliseconds = 5;
constexpr std::size_t longestShownPath = 4096;

/// What the child's streams become, and with which signals it starts.
class SpawnSetup {
  public:
    explicit SpawnSetup(const ChildStreams& streams) {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawnattr_init(&attributes_);
        check(::posix_spawn_file_actions_adddup2(&actions_, streams.input.number(), 0));
        check(::posix_spawn_file_actions_adddup2(&actions_, streams.output.number(), 1));
        check(::posix_spawn_file_actions_adddup2(&actions_, streams.errors.number(), 2));
        closeEverythingElse();
        setSignals();
        check(::posix_spawnattr_setpgroup(&attributes_, 0));
        check(::posix_spawnattr_setflags(&attributes_, flags_));
    }
    ~SpawnSetup() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attributes_);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;
    SpawnSetup(SpawnSetup&&) = delete;
    SpawnSetup& operator=(SpawnSetup&&) = delete;

    [[nodiscard]] const posix_spawn_file_actions_t* actions() const noexcept { return &actions_; }
    [[nodiscard]] const posix_spawnattr_t* attributes() const noexcept { return &attributes_; }

  private:
    static void check(int errorNumber) {
        if (errorNumber != 0) {
            throw AAFWorkerClientError::launchFailed("cannot prepare the start: " +
                                                     systemErrorText(errorNumber));
        }
    }

    /// Files and sockets of the host are no business of a process that reads strangers' files.
    void closeEverythingElse() {
#if defined(__APPLE__)
        flags_ = static_cast<short>(flags_ | POSIX_SPAWN_CLOEXEC_DEFAULT);
#elif defined(__GLIBC__)
        check(::posix_spawn_file_actions_addclosefrom_np(&actions_, 3));
#endif
    }

    /// What the host ignores or blocks is inherited otherwise, and a worker that cannot be told
    /// of a closed pipe or asked to end is in the way.
    void setSignals() {
        sigset_t signals;
        ::sigemptyset(&signals);
        check(::posix_spawnattr_setsigmask(&attributes_, &signals));
        ::sigfillset(&signals);
        ::sigdelset(&signals, SIGKILL);
        ::sigdelset(&signals, SIGSTOP);
        check(::posix_spawnattr_setsigdefault(&attributes_, &signals));
    }

    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
    short flags_ = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP;
};

[[noreturn]] void failStart(const std::filesystem::path& executable, int errorNumber) {
    std::error_code ignored;
    if (errorNumber == EACCES && std::filesystem::is_directory(executable, ignored)) {
        errorNumber = EISDIR;
    }
    throw AAFWorkerClientError::launchFailed("cannot start \"" +
                                             printableText(executable.string(), longestShownPath) +
                                             "\": " + systemErrorText(errorNumber));
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
    const SpawnSetup setup(streams);
    std::string path = executable.string();
    if (path.find('\0') != std::string::npos) {
        failStart(executable, EINVAL);
    }
    std::array<char*, 2> arguments{path.data(), nullptr};
    const int failure = ::posix_spawn(&process_, path.c_str(), setup.actions(), setup.attributes(),
                                      arguments.data(), environ);
    if (failure != 0) {
        failStart(executable, failure);
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
