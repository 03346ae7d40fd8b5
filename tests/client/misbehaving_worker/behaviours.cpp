// SPDX-License-Identifier: Apache-2.0
#include "behaviours.h"

#include "answers.h"
#include "life.h"

#include <csignal>
#include <initializer_list>
#include <limits>
#include <string>
#include <unistd.h>

namespace trellant::testing::misbehaving {

namespace {

constexpr std::size_t withoutEnd = std::numeric_limits<std::size_t>::max();
constexpr std::string_view readyLine =
    "TRELLANT-AAF-PROGRESS {\"phase\":\"ready\",\"fraction\":0.5}\n";

int answerEcho(const std::string& request) {
    writeAll(STDOUT_FILENO, echo(request));
    return 0;
}

[[noreturn]] void announceAndSleep() {
    announce();
    sleepForever();
}

int floodAndFail() {
    announce();
    // Both at once, so that a host that empties one pipe before the other never ends.
    startGrandchild([] { flood(STDOUT_FILENO, floodSize); });
    flood(STDERR_FILENO, floodSize);
    writeAll(STDERR_FILENO, linesAfterFlood);
    return readRequest().empty() ? brokenStatus : 3;
}

int floodErrorsAndAnswer() {
    announce();
    flood(STDERR_FILENO, floodSize);
    writeAll(STDERR_FILENO, linesAfterFlood);
    return answerEcho(readRequest());
}

[[noreturn]] void floodWithoutEnd() {
    startGrandchild([] { flood(STDOUT_FILENO, withoutEnd); });
    announce();
    flood(STDERR_FILENO, withoutEnd);
    ::_exit(brokenStatus);
}

[[noreturn]] void floodOutput() {
    announce();
    flood(STDOUT_FILENO, withoutEnd);
    ::_exit(brokenStatus);
}

int closeAndWait(const std::initializer_list<int> streams, int status) {
    (void)readRequest();
    for (const int stream : streams) {
        ::close(stream);
    }
    announce();
    waitForRelease();
    return status;
}

int answerByHalves() {
    const std::string answer = echo(readRequest());
    const std::size_t half = answer.size() / 2;
    writeAll(STDOUT_FILENO, answer.substr(0, half));
    announce();
    startGrandchild([&] {
        waitForRelease();
        writeAll(STDOUT_FILENO, answer.substr(half));
    });
    return 0;
}

int sleepingBehaviour(std::string_view name) {
    if (name == "never-reads") {
        announceAndSleep();
    }
    if (name == "closes-input") {
        ::close(STDIN_FILENO);
        announceAndSleep();
    }
    if (name == "closes-awaited-input") {
        // A host that sees the pipe break may end this process at once.
        announce();
        ::close(STDIN_FILENO);
        sleepForever();
    }
    if (name == "sleeps") {
        (void)readRequest();
        announceAndSleep();
    }
    if (name == "ignores-sigterm") {
        std::signal(SIGTERM, SIG_IGN);
        (void)readRequest();
        announceAndSleep();
    }
    if (name == "leaves-its-group") {
        (void)readRequest();
        ::setpgid(0, ::getpgid(::getppid()));
        announceAndSleep();
    }
    if (name == "notes-sigterm") {
        std::signal(SIGTERM, [](int) {
            noteSignal();
            ::_exit(9);
        });
        (void)readRequest();
        announceAndSleep();
    }
    if (name == "progresses-and-sleeps") {
        (void)readRequest();
        announce();
        writeAll(STDERR_FILENO, readyLine);
        sleepForever();
    }
    if (name == "leaves-grandchild-and-sleeps") {
        (void)readRequest();
        startGrandchild(sleepForever);
        announceAndSleep();
    }
    return brokenStatus;
}

}  // namespace

int behave(std::string_view name) {
    if (name == "answers") {
        announce();
        return answerEcho(readRequest());
    }
    if (name == "waits") {
        const std::string request = readRequest();
        announce();
        waitForRelease();
        return answerEcho(request);
    }
    if (name == "acts") {
        return actAsTold();
    }
    if (name == "reports") {
        return reportAsTold();
    }
    if (name == "describes-itself") {
        return describeItself();
    }
    if (name == "dies-without-reading") {
        announce();
        return 7;
    }
    if (name == "closes-pipes") {
        return closeAndWait({STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}, 6);
    }
    if (name == "closes-output") {
        return closeAndWait({STDOUT_FILENO}, 0);
    }
    if (name == "floods-and-fails") {
        return floodAndFail();
    }
    if (name == "floods-errors-and-answers") {
        return floodErrorsAndAnswer();
    }
    if (name == "floods-without-end") {
        floodWithoutEnd();
    }
    if (name == "floods-output-without-end") {
        floodOutput();
    }
    if (name == "answers-by-halves") {
        return answerByHalves();
    }
    if (name == "leaves-grandchild-on-errors") {
        announce();
        const std::string request = readRequest();
        startGrandchild([] {
            ::close(STDOUT_FILENO);
            sleepForever();
        });
        return answerEcho(request);
    }
    if (const auto status = behaveBadly(name)) {
        return *status;
    }
    return sleepingBehaviour(name);
}

}  // namespace trellant::testing::misbehaving
