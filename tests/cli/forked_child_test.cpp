// SPDX-License-Identifier: Apache-2.0
// Work in a child: its answer, its exceptions, and every way in which it can fail to give one.
#include "process/forked_child.h"

#include <trellant/io/errors.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <new>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

using cli::ForkedAnswer;
using cli::ForkedFailure;
using cli::inForkedChild;
using Kind = ForkedFailure::Kind;

ForkedAnswer failed(Kind kind, const std::string& reason) {
    return ForkedFailure{kind, reason};
}

class ForkedChild : public ::testing::Test {
  protected:
    // Every child must be gone, whatever became of it.
    void TearDown() override {
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
        EXPECT_EQ(errno, ECHILD);
    }
};

}  // namespace

TEST_F(ForkedChild, GivesTheTextOfTheWork) {
    EXPECT_EQ(inForkedChild([] { return std::string("an answer"); }), ForkedAnswer("an answer"));
}

TEST_F(ForkedChild, GivesNothingAsAnEmptyText) {
    EXPECT_EQ(inForkedChild([] { return std::string(); }), ForkedAnswer(""));
}

TEST_F(ForkedChild, KeepsZeroBytes) {
    const std::string text("a\0b", 3);
    EXPECT_EQ(inForkedChild([&] { return text; }), ForkedAnswer(text));
}

TEST_F(ForkedChild, WorksInAnotherProcess) {
    int calls = 0;
    const auto answer = inForkedChild([&] {
        ++calls;
        return std::to_string(::getpid());
    });
    EXPECT_EQ(calls, 0);
    EXPECT_NE(answer, ForkedAnswer(std::to_string(::getpid())));
}

TEST_F(ForkedChild, CarriesALargeText) {
    const std::size_t size = std::size_t{64} << 20U;
    const auto answer = inForkedChild([&] { return std::string(size, 'x'); });
    ASSERT_TRUE(std::holds_alternative<std::string>(answer));
    EXPECT_TRUE(std::get<std::string>(answer) == std::string(size, 'x'));
}

TEST_F(ForkedChild, BoundsTheText) {
    const auto ofSize = [](std::size_t size) {
        return inForkedChild([&] { return std::string(size, 'x'); }, 100'000);
    };
    EXPECT_EQ(ofSize(100'000), ForkedAnswer(std::string(100'000, 'x')));
    EXPECT_EQ(ofSize(100'001), failed(Kind::tooLong, "more than 100000 bytes"));
    EXPECT_EQ(ofSize(50'000'000), failed(Kind::tooLong, "more than 100000 bytes"));
}

TEST_F(ForkedChild, TellsTheSignalOfACrash) {
    EXPECT_EQ(inForkedChild([]() -> std::string {
                  const rlimit noCore{};
                  ::setrlimit(RLIMIT_CORE, &noCore);
                  std::signal(SIGSEGV, SIG_DFL);
                  std::raise(SIGSEGV);
                  return "not reached";
              }),
              failed(Kind::crashed, "ended by signal 11 (Segmentation fault)"));
}

TEST_F(ForkedChild, TellsThatItWasKilled) {
    EXPECT_EQ(inForkedChild([]() -> std::string {
                  ::kill(::getpid(), SIGKILL);
                  return "not reached";
              }),
              failed(Kind::crashed, "ended by signal 9 (Killed)"));
}

TEST_F(ForkedChild, TellsAnEarlyEnd) {
    EXPECT_EQ(inForkedChild([]() -> std::string { ::_exit(7); }),
              failed(Kind::crashed, "ended early with status 7"));
    EXPECT_EQ(inForkedChild([]() -> std::string { ::_exit(0); }),
              failed(Kind::crashed, "ended early with status 0"));
}

TEST_F(ForkedChild, CarriesTheTextOfAnException) {
    EXPECT_EQ(inForkedChild([]() -> std::string { throw OMFIOError::malformed("odd"); }),
              failed(Kind::exception, "Malformed OMF/Bento file: odd"));
    EXPECT_EQ(inForkedChild([]() -> std::string { throw FileSystemError("open", "a", ENOENT); }),
              failed(Kind::exception, "cannot open \"a\": No such file or directory"));
    EXPECT_EQ(inForkedChild([]() -> std::string { throw std::bad_alloc(); }),
              failed(Kind::exception, "out of memory"));
    EXPECT_EQ(inForkedChild([]() -> std::string { throw 7; }),
              failed(Kind::exception, "unknown failure"));
}

TEST_F(ForkedChild, IsEndedByARequestThatTheCommandWaitsFor) {
    const auto before = std::signal(SIGTERM, [](int) {});
    sigset_t requests;
    sigset_t maskBefore;
    ::sigemptyset(&requests);
    ::sigaddset(&requests, SIGTERM);
    ::sigprocmask(SIG_BLOCK, &requests, &maskBefore);
    const auto answer = inForkedChild([]() -> std::string {
        std::raise(SIGTERM);
        return "not reached";
    });
    ::sigprocmask(SIG_SETMASK, &maskBefore, nullptr);
    std::signal(SIGTERM, before);
    EXPECT_EQ(answer, failed(Kind::crashed, "ended by signal 15 (Terminated)"));
}

TEST_F(ForkedChild, KeepsIgnoringWhatTheCommandIgnoresFromItsStart) {
    const auto before = std::signal(SIGHUP, SIG_IGN);
    const auto answer = inForkedChild([] {
        std::raise(SIGHUP);
        return std::string("reached");
    });
    std::signal(SIGHUP, before);
    EXPECT_EQ(answer, ForkedAnswer("reached"));
}

TEST_F(ForkedChild, IsReadThroughInterruptions) {
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) {};
    ::sigaction(SIGUSR1, &action, &before);
    const pid_t parent = ::getpid();
    const auto answer = inForkedChild([&] {
        for (int i = 0; i < 1'000; ++i) {
            ::kill(parent, SIGUSR1);
        }
        return std::string(1'000'000, 'x');
    });
    ::sigaction(SIGUSR1, &before, nullptr);
    EXPECT_TRUE(answer == ForkedAnswer(std::string(1'000'000, 'x')));
}

TEST_F(ForkedChild, SaysWhatTheSystemRefuses) {
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    rlimit none = before;
    none.rlim_cur = 0;
    ::setrlimit(RLIMIT_NOFILE, &none);
    const auto answer = inForkedChild([] { return std::string("x"); });
    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(answer, failed(Kind::system, "cannot make a pipe: Too many open files"));
}

TEST(WhyNoAnswer, NamesTheFileUnlessTheChildSaidWhy) {
    EXPECT_EQ(cli::whyNoAnswer("mix.omf", {Kind::exception, "cannot open \"mix.omf\""}),
              "cannot open \"mix.omf\"");
    EXPECT_EQ(
        cli::whyNoAnswer("a\nb.omf", {Kind::crashed, "ended by signal 11 (Segmentation fault)"}),
        "\"a\\u000ab.omf\": the process that read it ended by signal 11 (Segmentation fault)");
    EXPECT_EQ(cli::whyNoAnswer("mix.omf", {Kind::tooLong, "more than 10 bytes"}),
              "\"mix.omf\": the process that read it gave more than 10 bytes");
}

}  // namespace trellant::testing
