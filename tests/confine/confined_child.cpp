// SPDX-License-Identifier: Apache-2.0
#include "confined_child.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

std::string readToEnd(int descriptor) {
    std::string text;
    std::array<char, 4'096> piece{};
    for (;;) {
        const auto count = ::read(descriptor, piece.data(), piece.size());
        if (count > 0) {
            text.append(piece.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return text;
        }
    }
}

int statusOf(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

[[noreturn]] void endChild(bool isWell) {
    ::_exit(isWell ? 0 : 1);
}

}  // namespace

std::string reportFromChild(const std::function<int()>& enter,
                            const std::function<std::string()>& attempt) {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        const int refusal = enter();
        const std::string report =
            refusal == 0 ? attempt() : std::string("cannot enter: ") + ::strerrorname_np(refusal);
        const auto written = ::write(ends[1], report.data(), report.size());
        endChild(written == static_cast<ssize_t>(report.size()));
    }
    ::close(ends[1]);
    std::string report = readToEnd(ends[0]);
    ::close(ends[0]);
    EXPECT_EQ(statusOf(child), 0) << "the child did not come to its end";
    return report;
}

int signalInChild(const std::function<int()>& enter, const std::function<void()>& attempt) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (enter() != 0) {
            endChild(false);
        }
        attempt();
        endChild(true);
    }
    const int status = statusOf(child);
    if (WIFEXITED(status)) {
        EXPECT_EQ(WEXITSTATUS(status), 0) << "the child could not enter";
        return 0;
    }
    EXPECT_FALSE(WCOREDUMP(status));
    return WTERMSIG(status);
}

long landlockGeneration() {
    const long generation =
        ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    return generation < 0 ? 0 : generation;
}

std::string outcome(long result) {
    return result < 0 ? ::strerrorname_np(errno) : "works";
}

std::string fieldOf(const std::string& text, const std::string& key) {
    const auto line = ("\n" + text).find("\n" + key);
    if (line == std::string::npos) {
        return {};
    }
    const auto value = text.find_first_not_of(" \t", line + key.size());
    return value == std::string::npos ? "" : text.substr(value, text.find('\n', value) - value);
}

std::string textOfFile(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return {};
    }
    std::string text = readToEnd(descriptor);
    ::close(descriptor);
    return text;
}

}  // namespace trellant::testing
