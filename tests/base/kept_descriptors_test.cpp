// SPDX-License-Identifier: Apache-2.0
// The way to start a program without the files of this process that every system has.
#include "kept_descriptors.h"

#include <trellant/base/file_descriptor.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace trellant {
namespace {

bool isListed(int descriptor) {
    const std::vector<int> kept = keptDescriptors();
    return std::find(kept.begin(), kept.end(), descriptor) != kept.end();
}

/// The status of a script of the shell that is started with the kept descriptors closed.
int statusOf(const std::string& script) {
    posix_spawn_file_actions_t actions;
    EXPECT_EQ(::posix_spawn_file_actions_init(&actions), 0);
    EXPECT_EQ(closeKeptDescriptors(actions), 0);
    std::string shell = "/bin/sh";
    std::string option = "-c";
    std::string copy = script;
    std::array<char*, 4> words{shell.data(), option.data(), copy.data(), nullptr};
    pid_t process = -1;
    EXPECT_EQ(::posix_spawn(&process, words[0], &actions, nullptr, words.data(), nullptr), 0);
    ::posix_spawn_file_actions_destroy(&actions);
    int status = -1;
    EXPECT_EQ(::waitpid(process, &status, 0), process);
    return WEXITSTATUS(status);
}

TEST(KeptDescriptors, AreThoseThatStayOpenOnExec) {
    const FileDescriptor kept(::open("/dev/null", O_RDONLY));
    const FileDescriptor high(::fcntl(kept.number(), F_DUPFD, 300));
    const FileDescriptor closed(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    EXPECT_TRUE(isListed(kept.number()));
    EXPECT_TRUE(isListed(high.number()));
    EXPECT_FALSE(isListed(closed.number()));
    EXPECT_FALSE(isListed(STDERR_FILENO));
}

TEST(KeptDescriptors, DoNotReachTheProgram) {
    const FileDescriptor file(::open("/dev/null", O_RDONLY));
    const FileDescriptor nine(::fcntl(file.number(), F_DUPFD, 9));
    ASSERT_EQ(nine.number(), 9);
    // The shell can use 9 only when it has inherited it.
    EXPECT_NE(statusOf("exec 2>&-; exec 8<&9"), 0);
    EXPECT_EQ(statusOf("exit 0"), 0);
    // And this process still has it.
    EXPECT_GE(::fcntl(nine.number(), F_GETFD), 0);
}

}  // namespace
}  // namespace trellant
