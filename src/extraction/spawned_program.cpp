// SPDX-License-Identifier: Apache-2.0
#include "spawned_program.h"

#include <trellant/base/file_descriptor.h>
#include <trellant/base/program_start.h>
#include <trellant/base/system_call_error.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace trellant {

namespace {

constexpr int tickMilliseconds = 100;
/// A program that has closed its errors ends at once, so that looking often costs nothing.
constexpr int lookMilliseconds = 5;
constexpr std::size_t keptErrors = 4'096;

struct RunningProgram {
    pid_t process;
    /// What it writes to standard error.
    FileDescriptor errors;
};

RunningProgram started(const std::vector<std::string>& commandLine) {
    try {
        Pipe errors = makePipe();
        const ProgramStart start({.errors = errors.writing.number()});
        return {start.start(commandLine), std::move(errors.reading)};
    } catch (const SystemCallError& error) {
        throw FileSystemError("start", commandLine.front(), error.errorNumber());
    }
}

/// Ends the process when it is left behind.
class Process {
  public:
    explicit Process(pid_t number) noexcept : number_(number) {}
    ~Process() {
        if (!ended_) {
            ::kill(-number_, SIGKILL);
            while (::waitpid(number_, nullptr, 0) < 0 && errno == EINTR) {
            }
        }
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    Process(Process&&) = delete;
    Process& operator=(Process&&) = delete;

    /// True once it has ended; `status` is then set.
    [[nodiscard]] bool hasEnded(int& status) noexcept {
        int raw = 0;
        const pid_t reaped = ::waitpid(number_, &raw, WNOHANG);
        if (reaped == 0 || (reaped < 0 && errno == EINTR)) {
            return false;
        }
        ended_ = true;
        status = reaped < 0 || WIFEXITED(raw) ? WEXITSTATUS(raw) : -WTERMSIG(raw);
        return true;
    }

  private:
    pid_t number_;
    bool ended_ = false;
};

/// Takes what there is; false at the end of the stream.
bool readErrors(int from, std::string& errors) {
    std::array<char, 1'024> piece{};
    const ssize_t got = ::read(from, piece.data(), piece.size());
    if (got > 0) {
        const std::size_t room = keptErrors - std::min(keptErrors, errors.size());
        errors.append(piece.data(), std::min(room, static_cast<std::size_t>(got)));
    }
    return got > 0 || (got < 0 && errno == EINTR);
}

}  // namespace

ProgramEnd runProgram(const std::vector<std::string>& commandLine,
                      const std::function<void()>& whileWaiting) {
    RunningProgram running = started(commandLine);
    Process process(running.process);
    FileDescriptor& reading = running.errors;
    ProgramEnd end;
    while (reading.isOpen() || !process.hasEnded(end.status)) {
        whileWaiting();
        pollfd words{.fd = reading.number(), .events = POLLIN, .revents = 0};
        if (reading.isOpen()) {
            if (::poll(&words, 1, tickMilliseconds) > 0 &&
                !readErrors(reading.number(), end.errors)) {
                reading.close();
            }
        } else {
            ::poll(nullptr, 0, lookMilliseconds);
        }
    }
    return end;
}

}  // namespace trellant
