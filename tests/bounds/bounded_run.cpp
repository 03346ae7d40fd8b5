// SPDX-License-Identifier: Apache-2.0
#include "bounded_run.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <string_view>
#include <sys/mman.h>
#include <sys/wait.h>
#include <trellant_testing/worker_process.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

constexpr std::string_view processorSeconds = sanitized ? "600" : "60";
/// Between two pieces of output; only a hang reaches it.
constexpr int patienceMilliseconds = sanitized ? 900'000 : 300'000;
constexpr int reportDescriptor = 3;
constexpr std::size_t pieceSize = 65'536;
/// How the encoder begins an event's identifier, and nothing else.
constexpr std::string_view eventMark = R"("id":"omf-event-)";

class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {
        if (number < 0) {
            throw std::runtime_error("no descriptor");
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() { ::close(number_); }

    [[nodiscard]] int number() const noexcept { return number_; }

  private:
    int number_;
};

/// A file without a name.
class MemoryFile {
  public:
    explicit MemoryFile(std::string_view text = {}) : file_(::memfd_create("bounds", MFD_CLOEXEC)) {
        while (!text.empty()) {
            const ssize_t count = ::write(number(), text.data(), text.size());
            if (count <= 0) {
                throw std::runtime_error("cannot write to memory");
            }
            text.remove_prefix(static_cast<std::size_t>(count));
        }
        ::lseek(number(), 0, SEEK_SET);
    }
    [[nodiscard]] int number() const noexcept { return file_.number(); }
    [[nodiscard]] std::string text() const {
        std::string all(static_cast<std::size_t>(::lseek(number(), 0, SEEK_END)), '\0');
        const ssize_t count = ::pread(number(), all.data(), all.size(), 0);
        all.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        return all;
    }

  private:
    Descriptor file_;
};

/// Takes in the output, of which only the beginning is kept.
class OutputReader {
  public:
    explicit OutputReader(BoundedRun& run) : run_(run) {}

    /// Until the other end is closed; false when nothing comes for too long.
    bool readAll(int descriptor) {
        std::array<char, pieceSize> piece{};
        for (;;) {
            pollfd waiting{descriptor, POLLIN, 0};
            const int ready = ::poll(&waiting, 1, patienceMilliseconds);
            if (ready == 0) {
                return false;
            }
            const ssize_t count = ready < 0 ? -1 : ::read(descriptor, piece.data(), piece.size());
            if (count == 0) {
                return true;
            }
            if (count > 0) {
                take({piece.data(), static_cast<std::size_t>(count)});
            } else if (errno != EINTR) {
                return false;
            }
        }
    }

  private:
    void take(std::string_view piece) {
        run_.outputBytes += piece.size();
        const auto room = BoundedRun::keptOutput - run_.output.size();
        run_.output.append(piece.substr(0, room));
        window_.append(piece);
        std::size_t at = 0;
        for (auto found = window_.find(eventMark); found != std::string::npos;
             found = window_.find(eventMark, at)) {
            ++run_.events;
            at = found + eventMark.size();
        }
        // A mark may be cut in two by the end of the piece.
        const auto rest = std::min(window_.size() - at, eventMark.size() - 1);
        window_.erase(0, window_.size() - rest);
    }

    BoundedRun& run_;
    std::string window_;
};

pid_t start(const MemoryFile& input, int output, const MemoryFile& errors, const MemoryFile& report,
            std::uint64_t addressSpace, std::string group) {
    posix_spawn_file_actions_t actions{};
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input.number(), STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, errors.number(), STDERR_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, report.number(), reportDescriptor);
    std::string limiter = TRELLANT_LIMITER;
    std::string space = std::to_string(sanitized ? 0 : addressSpace);
    std::string seconds(processorSeconds);
    std::string worker = workerPath();
    std::array<char*, 6> arguments{limiter.data(), space.data(),  seconds.data(),
                                   group.data(),   worker.data(), nullptr};
    pid_t child = 0;
    const int failure =
        ::posix_spawn(&child, limiter.c_str(), &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) {
        throw std::runtime_error("cannot start " + limiter);
    }
    return child;
}

void readReport(const std::string& report, BoundedRun& run) {
    int status = -1;
    int signal = -1;
    unsigned long long peakKibibytes = 0;
    unsigned long long milliseconds = 0;
    // What does not match leaves the run without an end.
    std::sscanf(report.c_str(), "%d %d %llu %llu", &status, &signal, &peakKibibytes, &milliseconds);
    if (status >= 0) {
        run.status = status;
    }
    if (signal >= 0) {
        run.signal = signal;
    }
    run.peak = peakKibibytes * kibibyte;
    run.seconds = static_cast<double>(milliseconds) / 1000;
}

}  // namespace

BoundedRun runBounded(const std::string& request, std::uint64_t addressSpace,
                      const std::string& groupProcesses) {
    BoundedRun run;
    const MemoryFile input(request);
    const MemoryFile errors;
    const MemoryFile report;
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    const Descriptor reading(ends[0]);
    pid_t child = 0;
    {
        const Descriptor writing(ends[1]);
        child = start(input, writing.number(), errors, report, addressSpace, groupProcesses);
    }
    if (!OutputReader(run).readAll(reading.number())) {
        ::kill(child, SIGKILL);
    }
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    readReport(report.text(), run);
    run.errors = errors.text();
    return run;
}

}  // namespace trellant::testing
