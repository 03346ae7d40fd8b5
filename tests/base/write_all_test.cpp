// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/file_descriptor.h>
#include <trellant/base/system_call_error.h>
#include <trellant/base/write_all.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace trellant {
namespace {

/// More than any pipe holds.
constexpr std::size_t muchText = 3'000'000;

std::string readToTheEnd(const FileDescriptor& from) {
    std::string text;
    std::string piece(4096, '\0');
    while (true) {
        const ssize_t got = ::read(from.number(), piece.data(), piece.size());
        if (got <= 0) {
            return text;
        }
        text.append(piece, 0, static_cast<std::size_t>(got));
    }
}

std::string countingText() {
    std::string text;
    for (std::size_t number = 0; text.size() < muchText; ++number) {
        text += std::to_string(number) + " ";
    }
    return text;
}

TEST(WriteAll, WritesTextsAndBytesOneAfterTheOther) {
    Pipe pipe = makePipe();
    EXPECT_EQ(writeAll(pipe.writing.number(), "one "), 0);
    EXPECT_EQ(writeAll(pipe.writing.number(), ""), 0);
    const Bytes bytes{std::byte{'t'}, std::byte{'w'}, std::byte{'o'}};
    EXPECT_EQ(writeAll(pipe.writing.number(), ByteView(bytes)), 0);
    pipe.writing.close();
    EXPECT_EQ(readToTheEnd(pipe.reading), "one two");
}

TEST(WriteAll, GoesOnUntilASlowReaderHasAll) {
    Pipe pipe = makePipe();
    const std::string text = countingText();
    int outcome = -1;
    std::thread writer([&] {
        outcome = writeAll(pipe.writing.number(), text);
        pipe.writing.close();
    });
    const std::string arrived = readToTheEnd(pipe.reading);
    writer.join();
    EXPECT_EQ(outcome, 0);
    EXPECT_TRUE(arrived == text);
}

TEST(WriteAll, WaitsForRoomOnlyWhenAskedTo) {
    Pipe pipe = makePipe();
    makeNonBlocking(pipe.writing);
    const std::string text = countingText();
    EXPECT_EQ(writeAll(pipe.writing.number(), text), EAGAIN);

    Pipe other = makePipe();
    makeNonBlocking(other.writing);
    int outcome = -1;
    std::thread writer([&] {
        outcome = writeAll(other.writing.number(), text, WhenFull::wait);
        other.writing.close();
    });
    const std::string arrived = readToTheEnd(other.reading);
    writer.join();
    EXPECT_EQ(outcome, 0);
    EXPECT_TRUE(arrived == text);
}

TEST(WriteAll, TellsTheSystemsRefusals) {
    EXPECT_EQ(writeAll(-1, "text"), EBADF);
    const FileDescriptor readOnly(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(writeAll(readOnly.number(), "text"), EBADF);
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    Pipe pipe = makePipe();
    pipe.reading.close();
    EXPECT_EQ(writeAll(pipe.writing.number(), "text"), EPIPE);
    std::signal(SIGPIPE, before);
}

void doNothing(int /*signal*/) {}

TEST(WriteAll, GoesOnAfterSignals) {
    struct sigaction handler {};
    struct sigaction before {};
    // Without SA_RESTART a write that waits is broken off.
    handler.sa_handler = doNothing;
    ASSERT_EQ(::sigaction(SIGUSR1, &handler, &before), 0);
    Pipe pipe = makePipe();
    const std::string text = countingText();
    int outcome = -1;
    std::thread writer([&] {
        outcome = writeAll(pipe.writing.number(), text);
        pipe.writing.close();
    });
    for (int count = 0; count < 20; ++count) {
        ::pthread_kill(writer.native_handle(), SIGUSR1);
        ::usleep(1000);
    }
    const std::string arrived = readToTheEnd(pipe.reading);
    writer.join();
    ::sigaction(SIGUSR1, &before, nullptr);
    EXPECT_EQ(outcome, 0);
    EXPECT_TRUE(arrived == text);
}

TEST(FileDescriptor, ClosesWhatItHoldsAndNothingElse) {
    Pipe pipe = makePipe();
    const int number = pipe.writing.number();
    EXPECT_TRUE(pipe.writing.isOpen());
    {
        const FileDescriptor taken = std::move(pipe.writing);
        EXPECT_EQ(taken.number(), number);
        EXPECT_EQ(::fcntl(number, F_GETFD), FD_CLOEXEC);
    }
    EXPECT_EQ(::fcntl(number, F_GETFD), -1);
    EXPECT_FALSE(FileDescriptor().isOpen());
}

TEST(Pipe, EndsCloseOnExecAndLieAboveTheStandardStreams) {
    const FileDescriptor kept(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3));
    ASSERT_TRUE(kept.isOpen());
    ::close(STDIN_FILENO);
    const Pipe pipe = makePipe();
    const int freeNumber = ::fcntl(STDIN_FILENO, F_GETFD);
    ::dup2(kept.number(), STDIN_FILENO);
    EXPECT_EQ(freeNumber, -1);
    for (const FileDescriptor* const end : {&pipe.reading, &pipe.writing}) {
        EXPECT_GT(end->number(), STDERR_FILENO);
        EXPECT_EQ(::fcntl(end->number(), F_GETFD), FD_CLOEXEC);
    }
}

TEST(Pipe, OneThatTheSystemRefusesIsATypedError) {
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit none = before;
    none.rlim_cur = 0;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    std::string text;
    int errorNumber = 0;
    try {
        const Pipe pipe = makePipe();
    } catch (const SystemCallError& error) {
        text = error.what();
        errorNumber = error.errorNumber();
    }
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(text, "cannot make a pipe: Too many open files");
    EXPECT_EQ(errorNumber, EMFILE);
}

}  // namespace
}  // namespace trellant
