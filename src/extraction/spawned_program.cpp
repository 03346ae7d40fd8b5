#include "spawned_program.h"

#include <trellant/io/errors.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#ifdef __APPLE__
extern char** environ;
#endif

namespace trellant {

namespace {

constexpr int tickMilliseconds = 100;
/// A program that has closed its errors ends at once, so that looking often costs nothing.
constexpr int lookMilliseconds = 5;
constexpr std::size_t keptErrors = 4'096;

void check(const std::string& program, int errorNumber) {
    if (errorNumber != 0) {
        throw FileSystemError("start", program, errorNumber);
    }
}

class End {
  public:
    explicit End(int number) noexcept : number_(number) {}
    ~End() { close(); }
    End(const End&) = delete;
    End& operator=(const End&) = delete;
    End(End&&) = delete;
    End& operator=(End&&) = delete;

    void close() noexcept {
        if (number_ >= 0) {
            ::close(std::exchange(number_, -1));
        }
    }
    [[nodiscard]] int number() const noexcept { return number_; }
    [[nodiscard]] bool isOpen() const noexcept { return number_ >= 0; }

  private:
    int number_;
};

std::array<int, 2> pipeEnds(const std::string& program) {
    std::array<int, 2> ends{};
    check(program, ::pipe2(ends.data(), O_CLOEXEC) == 0 ? 0 : errno);
    return ends;
}

class Setup {
  public:
    Setup(const std::string& program, int errors) {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawnattr_init(&attributes_);
        // First, or opening "/dev/null" could take the number of a stream that was closed.
        check(program, ::posix_spawn_file_actions_adddup2(&actions_, errors, STDERR_FILENO));
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO}) {
            check(program,
                  ::posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_RDWR, 0));
        }
#ifdef __GLIBC__
        check(program, ::posix_spawn_file_actions_addclosefrom_np(&actions_, 3));
#endif
        sigset_t signals;
        ::sigemptyset(&signals);
        check(program, ::posix_spawnattr_setsigmask(&attributes_, &signals));
        ::sigfillset(&signals);
        ::sigdelset(&signals, SIGKILL);
        ::sigdelset(&signals, SIGSTOP);
        check(program, ::posix_spawnattr_setsigdefault(&attributes_, &signals));
        check(program, ::posix_spawnattr_setpgroup(&attributes_, 0));
        check(program, ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK |
                                                                    POSIX_SPAWN_SETSIGDEF |
                                                                    POSIX_SPAWN_SETPGROUP));
    }
    ~Setup() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attributes_);
    }
    Setup(const Setup&) = delete;
    Setup& operator=(const Setup&) = delete;
    Setup(Setup&&) = delete;
    Setup& operator=(Setup&&) = delete;

    [[nodiscard]] pid_t start(std::vector<std::string> words) const {
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (std::string& word : words) {
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
        pid_t process = -1;
        check(words.front(), ::posix_spawn(&process, words.front().c_str(), &actions_, &attributes_,
                                           arguments.data(), environ));
        return process;
    }

  private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

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
    const std::string& program = commandLine.front();
    const auto ends = pipeEnds(program);
    End reading(ends[0]);
    End writing(ends[1]);
    Process process(Setup(program, writing.number()).start(commandLine));
    writing.close();
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
