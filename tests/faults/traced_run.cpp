// SPDX-License-Identifier: Apache-2.0
#include "traced_run.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/close_range.h>
#include <mutex>
#include <stdexcept>
#include <sys/personality.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace trellant::testing {

namespace {

constexpr int pipeSize = 1'048'576;
constexpr auto patience = std::chrono::minutes(2);
/// Of the child when the worker was not started.
constexpr int notStarted = 126;

class Pipe {
  public:
    Pipe() {
        if (::pipe2(ends_.data(), O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe");
        }
        ::fcntl(ends_[1], F_SETPIPE_SZ, pipeSize);
    }
    ~Pipe() {
        closeReading();
        closeWriting();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    Pipe(Pipe&&) = delete;
    Pipe& operator=(Pipe&&) = delete;

    [[nodiscard]] int reading() const noexcept { return ends_[0]; }
    [[nodiscard]] int writing() const noexcept { return ends_[1]; }
    void closeReading() noexcept { close(ends_[0]); }
    void closeWriting() noexcept { close(ends_[1]); }

    void fill(const std::string& text) const {
        if (::write(ends_[1], text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
            throw std::runtime_error("cannot fill a pipe");
        }
    }
    /// What lies in it, once nobody writes any more.
    [[nodiscard]] std::string drained() const {
        std::string text;
        std::array<char, 65'536> piece{};
        for (;;) {
            const auto count = ::read(ends_[0], piece.data(), piece.size());
            if (count <= 0) {
                return text;
            }
            text.append(piece.data(), static_cast<std::size_t>(count));
        }
    }

  private:
    static void close(int& end) noexcept {
        if (end >= 0) {
            ::close(std::exchange(end, -1));
        }
    }
    std::array<int, 2> ends_{-1, -1};
};

/// Kills a process that is still there after a long while.
class Watchdog {
  public:
    explicit Watchdog(pid_t process)
        : process_(static_cast<int>(::syscall(SYS_pidfd_open, process, 0))),
          thread_([this] { watch(); }) {}
    ~Watchdog() {
        {
            const std::lock_guard lock(mutex_);
            isOver_ = true;
        }
        over_.notify_one();
        thread_.join();
        ::close(process_);
    }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;
    Watchdog(Watchdog&&) = delete;
    Watchdog& operator=(Watchdog&&) = delete;

  private:
    void watch() {
        std::unique_lock lock(mutex_);
        if (!over_.wait_for(lock, patience, [this] { return isOver_; })) {
            ::syscall(SYS_pidfd_send_signal, process_, SIGKILL, nullptr, 0);
        }
    }

    int process_;
    std::mutex mutex_;
    std::condition_variable over_;
    bool isOver_ = false;
    std::thread thread_;
};

[[noreturn]] void giveUp(int complaint, const std::string& reason) {
    static_cast<void>(::write(complaint, reason.data(), reason.size()));
    ::_exit(notStarted);
}

/// Reading a worker's paths takes rights that it withholds from all but root once it is confined.
void leaveReadable() {
    if (::geteuid() != 0) {
        ::setenv("TRELLANT_SANDBOX", "off", 1);
    }
}

[[noreturn]] void becomeWorker(const TracedStart& start, std::array<int, 3> streams,
                               int complaint) {
    const std::string program = workerPath();
    for (int stream = 0; stream < static_cast<int>(streams.size()); ++stream) {
        ::dup2(streams[static_cast<std::size_t>(stream)], stream);
    }
    // What the test was started with beside its streams is not the worker's: it would count against
    // the limits set here.
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    std::signal(SIGPIPE, SIG_DFL);
    leaveReadable();
    ::personality(ADDR_NO_RANDOMIZE);
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
        giveUp(complaint, "tracing is not permitted");
    }
    try {
        if (const auto reason = start.prepare ? start.prepare() : ""; !reason.empty()) {
            giveUp(complaint, reason);
        }
    } catch (const std::exception& error) {
        giveUp(complaint, error.what());
    }
    ::raise(SIGSTOP);
    ::execl(program.c_str(), program.c_str(), nullptr);
    giveUp(complaint, std::string("the worker cannot be started: ") + std::strerror(errno));
}

std::size_t countArgument(std::uint64_t number) {
    constexpr std::size_t ofCopy = 4;
    constexpr std::size_t ofTransfer = 2;
    return number == SYS_copy_file_range ? ofCopy : ofTransfer;
}

/// One worker from its first call to its end.
class Trace {
  public:
    Trace(pid_t process, const TracedStart& start, TracedRun& result)
        : tracee_(process), reader_(start.places), director_(start.director), result_(result) {}

    /// Until the process has ended; gives its status as the system tells it.
    int follow() {
        int status = 0;
        int signal = 0;
        bool isSetUp = false;
        for (;;) {
            if (::waitpid(tracee_.process(), &status, 0) < 0) {
                if (errno == EINTR) {
                    continue;
                }
                throw std::runtime_error("the worker is lost");
            }
            if (!WIFSTOPPED(status)) {
                return status;
            }
            signal = WSTOPSIG(status);
            if (!isSetUp) {
                ::ptrace(PTRACE_SETOPTIONS, tracee_.process(), nullptr,
                         PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL | PTRACE_O_TRACEEXEC);
                isSetUp = true;
                signal = 0;
            } else if (signal == (SIGTRAP | 0x80)) {
                stopAtCall();
                signal = 0;
            } else if (status >> 8 == (SIGTRAP | (PTRACE_EVENT_EXEC << 8))) {
                isWorker_ = true;
                signal = 0;
            }
            ::ptrace(isWorker_ ? PTRACE_SYSCALL : PTRACE_CONT, tracee_.process(), nullptr, signal);
        }
    }

  private:
    void stopAtCall() {
        if (const auto call = tracee_.callAtEntry()) {
            enter(*call);
        } else if (const auto outcome = tracee_.resultAtExit()) {
            if (changed_) {
                tracee_.restoreArgument(changed_->first, changed_->second);
                changed_.reset();
            }
            if (imposed_ != 0) {
                tracee_.setResult(-imposed_);
            }
            reader_.returned(imposed_ != 0 ? -imposed_ : *outcome);
            imposed_ = 0;
        }
    }

    void enter(const SystemCall& call) {
        const SeenCall seen = reader_.see(call, tracee_);
        result_.calls.push_back(seen);
        if (!director_) {
            return;
        }
        const Intervention intervention = director_(seen, tracee_.process());
        if (intervention.errorNumber != 0 && call.number == SYS_brk) {
            // This one fails without an errno value: it tells where the memory ends, as before.
            change(call, 0, 0);
        } else if (intervention.errorNumber != 0) {
            tracee_.skipCall();
            imposed_ = intervention.errorNumber;
        } else if (intervention.byteLimit) {
            const auto argument = countArgument(call.number);
            change(call, argument, std::min(call.arguments.at(argument), *intervention.byteLimit));
        }
    }

    void change(const SystemCall& call, std::size_t argument, std::uint64_t value) {
        tracee_.setArgument(argument, value);
        changed_.emplace(argument, call.arguments.at(argument));
    }

    Tracee tracee_;
    CallReader reader_;
    const Director& director_;
    TracedRun& result_;
    bool isWorker_ = false;
    /// The errno value that the call in progress fails with, or 0.
    int imposed_ = 0;
    /// The argument of the call in progress that was changed, and what it was.
    std::optional<std::pair<std::size_t, std::uint64_t>> changed_;
};

void note(int status, WorkerRun& run) {
    if (WIFEXITED(status)) {
        run.status = WEXITSTATUS(status);
    } else {
        run.signal = WTERMSIG(status);
    }
}

}  // namespace

TracedRun runTraced(const TracedStart& start) {
    TracedRun result;
    Pipe input;
    Pipe output;
    Pipe errors;
    Pipe complaint;
    input.fill(start.input);
    const std::array<int, 3> streams{start.inputDescriptor.value_or(input.reading()),
                                     start.outputDescriptor.value_or(output.writing()),
                                     errors.writing()};
    const pid_t child = ::fork();
    if (child == 0) {
        becomeWorker(start, streams, complaint.writing());
    }
    if (child < 0) {
        throw std::runtime_error("no process");
    }
    input.closeWriting();
    output.closeWriting();
    errors.closeWriting();
    complaint.closeWriting();
    {
        const Watchdog watchdog(child);
        note(Trace(child, start, result).follow(), result.run);
    }
    result.notPermitted = complaint.drained();
    result.run.output = output.drained();
    result.run.errors = errors.drained();
    return result;
}

std::string whyNotTraced() {
    static const std::string reason = [] {
        const TracedRun run = runTraced({});
        if (!run.notPermitted.empty()) {
            return run.notPermitted;
        }
        return std::string(run.calls.empty() ? "system calls cannot be seen here" : "");
    }();
    return reason;
}

}  // namespace trellant::testing
