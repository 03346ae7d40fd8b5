// SPDX-License-Identifier: Apache-2.0
// What a worker gets from its host besides the request: three pipes, the environment and the
// current directory, and nothing else, whatever state the host is in.
#include "client_fixture.h"
#include "current_directory.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

/// One signal ignored by the process and one blocked in this thread, as long as it lives.
class UnusualSignals {
  public:
    UnusualSignals(std::vector<int> ignored, const std::vector<int>& blocked)
        : ignored_(std::move(ignored)) {
        for (const int signal : ignored_) {
            handlers_.push_back(std::signal(signal, SIG_IGN));
        }
        sigset_t set;
        ::sigemptyset(&set);
        for (const int signal : blocked) {
            ::sigaddset(&set, signal);
        }
        ::pthread_sigmask(SIG_BLOCK, &set, &mask_);
    }
    ~UnusualSignals() {
        ::pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
        for (std::size_t index = 0; index < ignored_.size(); ++index) {
            std::signal(ignored_[index], handlers_[index]);
        }
    }
    UnusualSignals(const UnusualSignals&) = delete;
    UnusualSignals& operator=(const UnusualSignals&) = delete;
    UnusualSignals(UnusualSignals&&) = delete;
    UnusualSignals& operator=(UnusualSignals&&) = delete;

  private:
    std::vector<int> ignored_;
    std::vector<void (*)(int)> handlers_;
    sigset_t mask_{};
};

/// The host without one of its standard streams, as long as it lives.
class ClosedStream {
  public:
    explicit ClosedStream(int stream)
        : stream_(stream), copy_(::fcntl(stream, F_DUPFD_CLOEXEC, 100)) {
        ::close(stream);
    }
    ~ClosedStream() {
        ::dup2(copy_, stream_);
        ::close(copy_);
    }
    ClosedStream(const ClosedStream&) = delete;
    ClosedStream& operator=(const ClosedStream&) = delete;
    ClosedStream(ClosedStream&&) = delete;
    ClosedStream& operator=(ClosedStream&&) = delete;

  private:
    int stream_;
    int copy_;
};

class ClientHostState : public ClientTest {
  protected:
    /// What a worker tells that was started like any program.
    static std::vector<std::string> ordinary() {
        return {"descriptors 0 1 2", "blocked", "ignored",
                "directory " + std::filesystem::current_path().string()};
    }
    [[nodiscard]] std::vector<std::string> description() const {
        return valueOf(client("describes-itself").run(plainRequest())).diagnostics;
    }
};

TEST_F(ClientHostState, WorkerStartsLikeAnyProgram) {
    EXPECT_EQ(description(), ordinary());
}

TEST_F(ClientHostState, FileThatStaysOpenOnExecDoesNotReachTheWorker) {
    const int file = ::open("/dev/null", O_RDONLY);
    const int high = ::fcntl(file, F_DUPFD, 200);
    ASSERT_GE(file, 0);
    ASSERT_GE(high, 200);
    EXPECT_EQ(description(), ordinary());
    ::close(file);
    ::close(high);
}

TEST_F(ClientHostState, SignalsThatTheHostIgnoresAreNotIgnoredByTheWorker) {
    const UnusualSignals signals({SIGPIPE, SIGTERM, SIGHUP, SIGUSR1, SIGINT}, {});
    EXPECT_EQ(description(), ordinary());
}

TEST_F(ClientHostState, SignalsThatTheHostBlocksAreNotBlockedInTheWorker) {
    const UnusualSignals signals({}, {SIGPIPE, SIGTERM, SIGHUP, SIGUSR1, SIGINT, SIGCHLD});
    EXPECT_EQ(description(), ordinary());
}

TEST_F(ClientHostState, CancellationWorksInAHostThatIgnoresAndBlocksThePoliteSignal) {
    const UnusualSignals signals({SIGTERM}, {SIGTERM});
    expectCancelEnds("sleeps");
    expectCancelEnds("notes-sigterm");
}

TEST_F(ClientHostState, WorkerStartsInTheDirectoryOfTheHost) {
    const TemporaryDirectory there;
    const CurrentDirectory directory(there.path());
    EXPECT_EQ(description().at(3),
              "directory " + std::filesystem::canonical(there.path()).string());
}

TEST_F(ClientHostState, HostWithoutStandardStreamsTalksToItsWorker) {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        std::vector<std::string> found;
        {
            const ClosedStream closed(stream);
            found = description();
        }
        EXPECT_EQ(found, ordinary()) << "without stream " << stream;
    }
    std::vector<std::string> found;
    {
        const ClosedStream input(STDIN_FILENO);
        const ClosedStream output(STDOUT_FILENO);
        const ClosedStream errors(STDERR_FILENO);
        found = description();
    }
    EXPECT_EQ(found, ordinary());
}

TEST_F(ClientHostState, TwoWorkersDoNotHoldEachOthersPipes) {
    StopSource stop;
    auto first = client("never-reads").run(largeRequest(), {}, stop.get_token());
    workers_.awaitAnnouncement("never-reads");
    auto second = client("sleeps").run(plainRequest(), {}, stop.get_token());
    workers_.awaitAnnouncement("sleeps");
    EXPECT_EQ(description(), ordinary());
    stop.request_stop();
    expectCancelled(std::move(first));
    expectCancelled(std::move(second));
}

TEST_F(ClientHostState, HostThatIgnoresItsChildrensEndGetsAnswers) {
    const UnusualSignals signals({SIGCHLD}, {});
    EXPECT_EQ(valueOf(client("answers").run(plainRequest())).diagnostics,
              std::vector<std::string>{encodeRequest(plainRequest())});
    expectCancelEnds("sleeps");
}

TEST_F(ClientHostState, HostThatIgnoresItsChildrensEndStillSeesFailures) {
    const UnusualSignals signals({SIGCHLD}, {});
    // Which status it was, the system kept to itself.
    expectFault(act({.errors = {"no\n"}, .status = 2}), NonZeroExit{-1, "no"});
}

}  // namespace

}  // namespace trellant::testing
