// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <string_view>
#include <sys/wait.h>
#include <trellant_testing/encoded_documents.h>
#include <trellant_testing/worker_process.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace trellant::testing {

namespace {

/// Far longer than any run under any tool takes, so that only a hang reaches it.
constexpr int patienceMilliseconds = 120'000;

class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    void close() noexcept {
        if (number_ >= 0) {
            ::close(std::exchange(number_, -1));
        }
    }
    [[nodiscard]] int number() const noexcept { return number_; }
    [[nodiscard]] bool isOpen() const noexcept { return number_ >= 0; }

  private:
    int number_ = -1;
};

struct Pipe {
    Descriptor reading;
    Descriptor writing;
};

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

void makeNonBlocking(const Descriptor& descriptor) {
    ::fcntl(descriptor.number(), F_SETFL, O_NONBLOCK);
}

/// What the child's streams become, and with which signals it starts.
class Setup {
  public:
    Setup() {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawnattr_init(&attributes_);
        // The test ignores this signal; the worker must meet it as any program does.
        sigset_t defaults;
        ::sigemptyset(&defaults);
        ::sigaddset(&defaults, SIGPIPE);
        ::posix_spawnattr_setsigdefault(&attributes_, &defaults);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF);
    }
    Setup(const Setup&) = delete;
    Setup& operator=(const Setup&) = delete;
    Setup(Setup&&) = delete;
    Setup& operator=(Setup&&) = delete;
    ~Setup() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attributes_);
    }

    void stream(int stream, const Descriptor& end, bool closed) {
        if (closed) {
            ::posix_spawn_file_actions_addclose(&actions_, stream);
        } else {
            ::posix_spawn_file_actions_adddup2(&actions_, end.number(), stream);
        }
    }
    void directory(const std::string& path) {
        if (!path.empty()) {
            ::posix_spawn_file_actions_addchdir_np(&actions_, path.c_str());
        }
    }
    [[nodiscard]] pid_t start(std::string program, std::vector<std::string> words) {
        std::vector<char*> arguments{program.data()};
        for (std::string& word : words) {
            arguments.push_back(word.data());
        }
        arguments.push_back(nullptr);
        pid_t child = 0;
        if (::posix_spawn(&child, program.c_str(), &actions_, &attributes_, arguments.data(),
                          environ) != 0) {
            throw std::runtime_error("cannot start " + program);
        }
        return child;
    }

  private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

/// The test's side of the three pipes.
class Conversation {
  public:
    Conversation(const WorkerStart& start, WorkerRun& run)
        : toWrite_(start.input ? std::string_view(*start.input) : std::string_view()),
          limits_{start.output.readerLeavesAfter, start.errors.readerLeavesAfter},
          texts_{&run.output, &run.errors} {}

    Descriptor input;
    std::array<Descriptor, 2> outputs;

    /// Until the worker has closed what the test still reads; false when it takes too long.
    bool hold() {
        for (;;) {
            std::array<pollfd, 3> waiting{pollfd{input.number(), POLLOUT, 0},
                                          pollfd{outputs[0].number(), POLLIN, 0},
                                          pollfd{outputs[1].number(), POLLIN, 0}};
            if (!outputs[0].isOpen() && !outputs[1].isOpen() && !input.isOpen()) {
                return true;
            }
            const int ready = ::poll(waiting.data(), waiting.size(), patienceMilliseconds);
            if (ready < 0 && errno == EINTR) {
                continue;
            }
            if (ready <= 0) {
                return false;
            }
            if (waiting[0].revents != 0) {
                write();
            }
            for (std::size_t stream = 0; stream < outputs.size(); ++stream) {
                if (waiting[stream + 1].revents != 0) {
                    read(stream);
                }
            }
        }
    }

  private:
    void write() {
        const auto count = ::write(input.number(), toWrite_.data(), toWrite_.size());
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
            return;
        }
        // A worker that ended without reading everything is no fault of the test.
        toWrite_.remove_prefix(count < 0 ? toWrite_.size() : static_cast<std::size_t>(count));
        if (toWrite_.empty()) {
            input.close();
        }
    }

    void read(std::size_t stream) {
        std::array<char, 65'536> piece{};
        const auto wanted =
            limits_[stream] ? *limits_[stream] - texts_[stream]->size() : piece.size();
        const auto count =
            ::read(outputs[stream].number(), piece.data(), std::min(wanted, piece.size()));
        if (count > 0) {
            texts_[stream]->append(piece.data(), static_cast<std::size_t>(count));
        }
        const bool isFull = limits_[stream] && texts_[stream]->size() >= *limits_[stream];
        if (count == 0 || isFull) {
            outputs[stream].close();
        }
    }

    std::string_view toWrite_;
    std::array<std::optional<std::size_t>, 2> limits_;
    std::array<std::string*, 2> texts_;
};

void waitFor(pid_t child, WorkerRun& run) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status)) {
        run.status = WEXITSTATUS(status);
    } else {
        run.signal = WTERMSIG(status);
    }
}

void keepDocuments(const WorkerStart& start, const WorkerRun& run) {
    // What the worker says of itself is no document.
    const bool isWhole = run.status == 0 && !start.output.readerLeavesAfter &&
                         (start.arguments.empty() || run.output.starts_with('{'));
    keepWorkerRun(start.input.value_or(""), isWhole ? run.output : "", run.errors);
}

}  // namespace

std::string workerPath() {
    return TRELLANT_WORKER_PATH;
}

WorkerRun runWorker(const WorkerStart& start) {
    std::signal(SIGPIPE, SIG_IGN);
    WorkerRun run;
    Conversation conversation(start, run);
    Setup setup;
    setup.directory(start.directory);
    Pipe input = makePipe();
    std::array<Pipe, 2> outputs{makePipe(), makePipe()};
    const std::array<OutputStream, 2> wishes{start.output, start.errors};
    setup.stream(STDIN_FILENO, input.reading, !start.input);
    for (std::size_t stream = 0; stream < outputs.size(); ++stream) {
        setup.stream(STDOUT_FILENO + static_cast<int>(stream), outputs[stream].writing,
                     wishes[stream].closed);
        if (wishes[stream].closed || wishes[stream].readerLeavesAfter == std::size_t{0}) {
            outputs[stream].reading.close();
        }
    }
    const pid_t child = setup.start(workerPath(), start.arguments);
    input.reading.close();
    for (std::size_t stream = 0; stream < outputs.size(); ++stream) {
        outputs[stream].writing.close();
        conversation.outputs[stream] = std::move(outputs[stream].reading);
    }
    makeNonBlocking(input.writing);
    conversation.input = std::move(input.writing);
    if (!conversation.hold()) {
        ::kill(child, SIGKILL);
    }
    waitFor(child, run);
    keepDocuments(start, run);
    return run;
}

}  // namespace trellant::testing
