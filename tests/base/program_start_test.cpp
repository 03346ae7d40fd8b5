// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/file_descriptor.h>
#include <trellant/base/program_start.h>
#include <trellant/base/system_call_error.h>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace trellant {
namespace {

std::string readToTheEnd(const FileDescriptor& from) {
    std::string text;
    std::array<char, 512> piece{};
    while (true) {
        const ssize_t got = ::read(from.number(), piece.data(), piece.size());
        if (got <= 0) {
            return text;
        }
        text.append(piece.data(), static_cast<std::size_t>(got));
    }
}

int statusOf(pid_t process) {
    int status = 0;
    EXPECT_EQ(::waitpid(process, &status, 0), process);
    return status;
}

/// What a script of the shell writes to standard output.
std::string outputOf(const std::string& script) {
    Pipe output = makePipe();
    const ProgramStart start({.output = output.writing.number()});
    const pid_t process = start.start({"/bin/sh", "-c", script});
    output.writing.close();
    std::string text = readToTheEnd(output.reading);
    EXPECT_EQ(statusOf(process), 0);
    return text;
}

int refusalOf(std::vector<std::string> words) {
    const ProgramStart start({});
    try {
        statusOf(start.start(std::move(words)));
    } catch (const SystemCallError& error) {
        return error.errorNumber();
    }
    return 0;
}

TEST(ProgramStart, HandsOnStreamsAndWords) {
    Pipe input = makePipe();
    Pipe output = makePipe();
    Pipe errors = makePipe();
    const ProgramStart start({.input = input.reading.number(),
                              .output = output.writing.number(),
                              .errors = errors.writing.number()});
    const pid_t process = start.start(
        {"/bin/sh", "-c", "read line; echo \"$line, $1\"; echo complaint >&2", "sh", "two words"});
    input.reading.close();
    output.writing.close();
    errors.writing.close();
    ASSERT_EQ(::write(input.writing.number(), "line\n", 5), 5);
    EXPECT_EQ(readToTheEnd(output.reading), "line, two words\n");
    EXPECT_EQ(readToTheEnd(errors.reading), "complaint\n");
    EXPECT_EQ(statusOf(process), 0);
}

TEST(ProgramStart, AStreamThatIsNotGivenIsEmptyAndTakesEverything) {
    EXPECT_EQ(outputOf("read line || echo nothing; echo complaint >&2 && echo taken"),
              "nothing\ntaken\n");
}

TEST(ProgramStart, OtherDescriptorsOfThisProcessStayHere) {
    const FileDescriptor open(::fcntl(STDERR_FILENO, F_DUPFD, 3));
    // The shell takes one digit.
    ASSERT_LE(open.number(), 9);
    const std::string use = "(: >&" + std::to_string(open.number()) + ") 2>/dev/null";
    EXPECT_EQ(outputOf(use + " && echo open || echo closed"), "closed\n");
}

TEST(ProgramStart, SignalsAreThoseOfAFreshProgram) {
    const auto before = std::signal(SIGTERM, SIG_IGN);
    sigset_t blocked;
    sigset_t mask;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &mask);
    const ProgramStart start({});
    const pid_t process = start.start({"/bin/sh", "-c", "kill -TERM $$; exit 3"});
    ::pthread_sigmask(SIG_SETMASK, &mask, nullptr);
    std::signal(SIGTERM, before);
    const int status = statusOf(process);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

TEST(ProgramStart, LeadsAProcessGroupOfItsOwn) {
    Pipe input = makePipe();
    Pipe output = makePipe();
    const ProgramStart start({.input = input.reading.number(), .output = output.writing.number()});
    const pid_t process = start.start({"/bin/sh", "-c", "echo started; read line"});
    // Under an emulator the start returns before the program has begun.
    std::array<char, 8> word{};
    EXPECT_EQ(::read(output.reading.number(), word.data(), word.size()), 8);
    EXPECT_EQ(::getpgid(process), process);
    ::kill(-process, SIGKILL);
    EXPECT_TRUE(WIFSIGNALED(statusOf(process)));
}

TEST(ProgramStart, OnePreparationServesSeveralStarts) {
    const ProgramStart start({});
    const pid_t first = start.start({"/bin/sh", "-c", "exit 1"});
    const pid_t second = start.start({"/bin/sh", "-c", "exit 2"});
    EXPECT_EQ(WEXITSTATUS(statusOf(first)), 1);
    EXPECT_EQ(WEXITSTATUS(statusOf(second)), 2);
}

TEST(ProgramStart, TellsWhyAProgramDoesNotStart) {
    EXPECT_EQ(refusalOf({"/nowhere/program"}), ENOENT);
    EXPECT_EQ(refusalOf({"/"}), EACCES);
    EXPECT_EQ(refusalOf({std::string("/bin/sh\0x", 9)}), EINVAL);
    EXPECT_EQ(refusalOf({"/bin/sh", std::string("-c\0", 3)}), EINVAL);
    try {
        const ProgramStart start({});
        statusOf(start.start({"/nowhere/program"}));
        FAIL() << "started";
    } catch (const SystemCallError& error) {
        EXPECT_STREQ(error.what(), "cannot start the program: No such file or directory");
    }
}

TEST(ProgramStart, TellsWhyItCannotBePrepared) {
    try {
        const ProgramStart start({.input = -1});
        FAIL() << "prepared";
    } catch (const SystemCallError& error) {
        EXPECT_STREQ(error.what(), "cannot prepare the start: Bad file descriptor");
    }
}

}  // namespace
}  // namespace trellant
