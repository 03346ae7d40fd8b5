// SPDX-License-Identifier: Apache-2.0
// Processes that end with whoever started them, and what they leave.
#include <trellant/base/host_watch.h>

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <trellant_testing/killed_host.h>
#include <trellant_testing/temporary_directory.h>
#include <unistd.h>

namespace trellant::testing {
namespace {

constexpr int endStatus = 7;
constexpr useconds_t restMicroseconds = 1'000;

using Ready = std::function<void()>;

void blockTheNotice() {
    sigset_t notice;
    ::sigemptyset(&notice);
    ::sigaddset(&notice, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &notice, nullptr);
}

class HostWatch : public ::testing::Test {
  protected:
    void writeUnfinished() const { std::ofstream(path_) << "half"; }
    [[nodiscard]] bool isLeft() const { return std::filesystem::exists(path_); }

    TemporaryDirectory folder_;
    std::string path_ = folder_.file("unfinished");
};

void expectEnd(int status, int expected) {
    EXPECT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), expected);
}

TEST_F(HostWatch, IdleProcessEndsWithItsHostAndRemovesWhatIsUnfinished) {
    KilledHost host([&](const Ready& ready) {
        watchHost(endStatus);
        writeUnfinished();
        const UnfinishedFile file(path_.c_str());
        ready();
        for (;;) {
            ::pause();
        }
    });
    EXPECT_TRUE(isLeft());
    host.kill();
    expectEnd(host.endOfWorker(), endStatus);
    EXPECT_FALSE(isLeft());
}

TEST_F(HostWatch, WhatIsFinishedStays) {
    KilledHost host([&](const Ready& ready) {
        watchHost(endStatus);
        writeUnfinished();
        { const UnfinishedFile file(path_.c_str()); }
        ready();
        for (;;) {
            ::pause();
        }
    });
    host.kill();
    expectEnd(host.endOfWorker(), endStatus);
    EXPECT_TRUE(isLeft());
}

TEST_F(HostWatch, ALookSeesItWithoutTheNotice) {
    KilledHost host([&](const Ready& ready) {
        watchHost(endStatus);
        blockTheNotice();
        writeUnfinished();
        const UnfinishedFile file(path_.c_str());
        ready();
        for (;;) {
            endIfHostIsGone();
            ::usleep(restMicroseconds);
        }
    });
    host.kill();
    expectEnd(host.endOfWorker(), endStatus);
    EXPECT_FALSE(isLeft());
}

TEST_F(HostWatch, ProcessThatStillHasAReaderGoesOn) {
    KilledHost host(
        [&](const Ready& ready) {
            const pid_t parent = ::getppid();
            watchHost(endStatus);
            ready();
            while (::getppid() == parent) {
                ::usleep(restMicroseconds);
            }
            endIfHostIsGone();
        },
        KilledHost::Reader::stays);
    host.kill();
    expectEnd(host.endOfWorker(), 0);
}

TEST_F(HostWatch, ProcessWhoseReaderHasEnoughGoesOnWhileItsHostLives) {
    int status = 0;
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    const pid_t process = ::fork();
    if (process == 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        ::close(ends[0]);
        ::close(ends[1]);
        watchHost(endStatus);
        endIfHostIsGone();
        ::_exit(0);
    }
    ::close(ends[0]);
    ::close(ends[1]);
    ASSERT_EQ(::waitpid(process, &status, 0), process);
    expectEnd(status, 0);
}

TEST_F(HostWatch, EndOfTheThreadThatStartedItIsNotTheEndOfItsHost) {
    std::array<int, 2> gone{};
    ASSERT_EQ(::pipe(gone.data()), 0);
    ::close(gone[0]);
    pid_t process = -1;
    std::thread([&] {
        std::array<int, 2> ready{};
        ASSERT_EQ(::pipe(ready.data()), 0);
        process = ::fork();
        if (process == 0) {
            // Nobody listens either.
            ::dup2(gone[1], STDOUT_FILENO);
            watchHost(endStatus);
            blockTheNotice();
            static_cast<void>(::write(ready[1], "r", 1));
            // Comes back with the notice of the thread's end.
            sigset_t none;
            ::sigemptyset(&none);
            ::sigsuspend(&none);
            ::_exit(0);
        }
        char told = 0;
        EXPECT_EQ(::read(ready[0], &told, 1), 1);
        ::close(ready[0]);
        ::close(ready[1]);
    }).join();
    ::close(gone[1]);
    int status = 0;
    ASSERT_EQ(::waitpid(process, &status, 0), process);
    expectEnd(status, 0);
}

TEST_F(HostWatch, LookWithoutAWatchChangesNothing) {
    endIfHostIsGone();
    const UnfinishedFile file(path_.c_str());
    writeUnfinished();
    endIfHostIsGone();
    EXPECT_TRUE(isLeft());
}

/// A child that is sent `signal` while a file is unfinished; how it ended.
int endBy(int signal, const std::string& path, bool isIgnored) {
    const pid_t process = ::fork();
    if (process == 0) {
        if (isIgnored) {
            static_cast<void>(std::signal(signal, SIG_IGN));
        }
        removeUnfinishedFileOnSignals();
        const UnfinishedFile file(path.c_str());
        std::raise(signal);
        ::_exit(0);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(process, &status, 0), process);
    return status;
}

TEST_F(HostWatch, SignalThatEndsTheProcessRemovesWhatIsUnfinished) {
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        writeUnfinished();
        const int status = endBy(signal, path_, false);
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), signal);
        EXPECT_FALSE(isLeft());
    }
}

TEST_F(HostWatch, EndThatIsPutOffComesWithTheFileKnown) {
    const pid_t process = ::fork();
    if (process == 0) {
        removeUnfinishedFileOnSignals();
        std::optional<UnfinishedFile> file;
        {
            const EndPutOff untilItIsKnown;
            writeUnfinished();
            std::raise(SIGTERM);
            file.emplace(path_.c_str());
        }
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
    EXPECT_FALSE(isLeft());
}

TEST_F(HostWatch, SignalThatIsIgnoredStaysIgnored) {
    writeUnfinished();
    expectEnd(endBy(SIGHUP, path_, true), 0);
    EXPECT_TRUE(isLeft());
}

}  // namespace
}  // namespace trellant::testing
