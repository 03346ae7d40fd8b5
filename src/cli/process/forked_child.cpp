// SPDX-License-Identifier: Apache-2.0
// The child's answer is one byte, which tells a text from an exception's, and the bytes of the text
// to the end of the pipe. A child that was cut short ends by a signal or without the last status.
#include "forked_child.h"

#include <trellant/base/file_descriptor.h>
#include <trellant/base/printable_path.h>
#include <trellant/base/system_call_error.h>
#include <trellant/base/write_all.h>
#include <trellant/confine/confinement.h>
#include <trellant/confine/memory_allowance.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <new>
#include <optional>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace trellant::cli {

namespace {

constexpr char answerMark = 'A';
constexpr char exceptionMark = 'E';
constexpr int answeredStatus = 0;
constexpr int cutShortStatus = 1;
constexpr std::size_t readPiece = 65'536;

/// What the parent arranged for itself is not the child's: a request to end ends it. What is
/// ignored stays so: that is how nohup works.
void prepareChild([[maybe_unused]] pid_t parent) noexcept {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        if (std::signal(number, SIG_DFL) == SIG_IGN) {
            static_cast<void>(std::signal(number, SIG_IGN));
        }
    }
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    sigset_t none;
    ::sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
#ifdef __linux__
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) {
        ::_exit(cutShortStatus);
    }
#endif
}

[[noreturn]] void answer(const std::function<std::string()>& work, int descriptor) noexcept {
    char mark = answerMark;
    std::string text;
    try {
        text = work();
    } catch (const std::bad_alloc&) {
        mark = exceptionMark;
        text = "out of memory";
    } catch (const std::exception& error) {
        mark = exceptionMark;
        text = error.what();
    } catch (...) {
        mark = exceptionMark;
        text = "unknown failure";
    }
    const bool isWritten =
        writeAll(descriptor, std::string_view(&mark, 1)) == 0 && writeAll(descriptor, text) == 0;
    // Nothing of the parent's is flushed or destroyed a second time.
    ::_exit(isWritten ? answeredStatus : cutShortStatus);
}

/// All that comes, or nothing when it is more than `maxBytes`.
std::optional<std::string> readAll(int descriptor, std::size_t maxBytes) {
    std::string text;
    std::array<char, readPiece> piece;
    for (;;) {
        const auto count = ::read(descriptor, piece.data(), piece.size());
        if (count > 0) {
            const auto size = static_cast<std::size_t>(count);
            if (size > maxBytes - text.size()) {
                return std::nullopt;
            }
            text.append(piece.data(), size);
        } else if (count == 0 || errno != EINTR) {
            return text;
        }
    }
}

/// The child's end as waitpid tells it.
int reap(pid_t child) noexcept {
    int status = 0;
    pid_t reaped = 0;
    do {
        reaped = ::waitpid(child, &status, 0);
    } while (reaped < 0 && errno == EINTR);
    // Ignored children are reaped by the system: that it answered is then all there is to know.
    return reaped == child ? status : answeredStatus;
}

ForkedAnswer judged(std::string text, int status) {
    if (WIFSIGNALED(status)) {
        const int signal = WTERMSIG(status);
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the text is copied before anything else is asked.
        const std::string name(::strsignal(signal));
        return ForkedFailure{ForkedFailure::Kind::crashed,
                             "ended by signal " + std::to_string(signal) + " (" + name + ")"};
    }
    if (WEXITSTATUS(status) != answeredStatus || text.empty()) {
        return ForkedFailure{ForkedFailure::Kind::crashed,
                             "ended early with status " + std::to_string(WEXITSTATUS(status))};
    }
    const bool isException = text.front() == exceptionMark;
    text.erase(0, 1);
    if (isException) {
        return ForkedFailure{ForkedFailure::Kind::exception, std::move(text)};
    }
    return text;
}

}  // namespace

ForkedAnswer inForkedChild(const std::function<std::string()>& work, std::size_t maxBytes) try {
    Pipe pipe = makePipe();
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child == 0) {
        pipe.reading.close();
        prepareChild(parent);
        answer(work, pipe.writing.number());
    }
    if (child < 0) {
        throw SystemCallError("start a process", errno);
    }
    pipe.writing.close();
    // The mark comes on top of the text.
    auto text = readAll(pipe.reading.number(), maxBytes + 1);
    pipe.reading.close();
    if (!text) {
        ::kill(child, SIGKILL);
        reap(child);
        return ForkedFailure{ForkedFailure::Kind::tooLong,
                             "more than " + std::to_string(maxBytes) + " bytes"};
    }
    return judged(std::move(*text), reap(child));
} catch (const SystemCallError& error) {
    return ForkedFailure{ForkedFailure::Kind::system, error.what()};
}

ForkedAnswer inConfinedChild(const std::function<std::string()>& work,
                             const std::optional<std::string>& writableDirectory,
                             const std::optional<std::vector<std::string>>& readablePaths,
                             std::size_t maxBytes) {
    return inForkedChild(
        [&] {
            keepWithinMemory();
            confine(sandboxFromEnvironment(), {.writableDirectory = writableDirectory,
                                               .awaitsStreams = true,
                                               .readablePaths = readablePaths});
            return work();
        },
        maxBytes);
}

std::string whyNoAnswer(const std::string& file, const ForkedFailure& failure) {
    if (failure.kind == ForkedFailure::Kind::exception) {
        return failure.reason;
    }
    const bool isTooLong = failure.kind == ForkedFailure::Kind::tooLong;
    return "\"" + printablePath(file) + "\": the process that read it " +
           (isTooLong ? "gave " : "") + failure.reason;
}

}  // namespace trellant::cli
