// SPDX-License-Identifier: Apache-2.0
#include "answers.h"
#include "behaviours.h"
#include "life.h"

#include <array>
#include <csignal>
#include <string>
#include <unistd.h>

namespace trellant::testing::misbehaving {

namespace {

int floodErrorsInOneLine() {
    announce();
    const std::string piece(65'536, 'x');
    for (std::size_t written = 0; written < lineFloodSize; written += piece.size()) {
        writeAll(STDERR_FILENO, piece);
    }
    return 4;
}

[[noreturn]] void floodErrorsWithoutEnd() {
    announce();
    const std::string piece(65'536, 'x');
    for (;;) {
        writeAll(STDERR_FILENO, piece);
    }
}

[[noreturn]] void reportWithoutEnd() {
    announce();
    for (;;) {
        writeAll(STDERR_FILENO, "TRELLANT-AAF-PROGRESS {\"phase\":\"again\",\"fraction\":0}\n");
    }
}

/// Ends with part of a request taken that is larger than a pipe.
int dieWhileReading(int signal) {
    announce();
    std::array<char, 100> start{};
    std::size_t taken = 0;
    while (taken < start.size()) {
        const ssize_t count = ::read(STDIN_FILENO, start.data(), start.size() - taken);
        if (count <= 0) {
            return brokenStatus;
        }
        taken += static_cast<std::size_t>(count);
    }
    if (signal != 0) {
        std::raise(signal);
    }
    return 5;
}

[[noreturn]] void answerAndSleep() {
    writeAll(STDOUT_FILENO, echo(readRequest()));
    announce();
    sleepForever();
}

/// Answers and ends, and leaves a process behind that no signal to its group reaches.
int leaveStrangerOnThePipes() {
    const std::string request = readRequest();
    startGrandchild([] {
        ::setsid();
        sleepForever();
    });
    announce();
    writeAll(STDOUT_FILENO, echo(request));
    return 0;
}

}  // namespace

std::optional<int> behaveBadly(std::string_view name) {
    if (name == "repeats") {
        return repeatAsTold();
    }
    if (name == "floods-errors-in-one-line") {
        return floodErrorsInOneLine();
    }
    if (name == "floods-errors-without-end") {
        floodErrorsWithoutEnd();
    }
    if (name == "progresses-without-end") {
        reportWithoutEnd();
    }
    if (name == "dies-while-reading") {
        return dieWhileReading(0);
    }
    if (name == "is-killed-while-reading") {
        return dieWhileReading(SIGKILL);
    }
    if (name == "answers-and-sleeps") {
        answerAndSleep();
    }
    if (name == "leaves-stranger-on-the-pipes") {
        return leaveStrangerOnThePipes();
    }
    return std::nullopt;
}

}  // namespace trellant::testing::misbehaving
