// SPDX-License-Identifier: Apache-2.0
// What the child that reads a file has given up, and that a dump says the same without it.
#include "confined_child.h"
#include "dumped.h"
#include "environment_variable.h"
#include "process/forked_child.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sys/socket.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

using cli::ForkedAnswer;
using cli::ForkedFailure;
using cli::inConfinedChild;

constexpr const char* variable = "TRELLANT_SANDBOX";

/// What an attempt in the child comes to: "works", or the name of errno.
std::string tried(const std::function<long()>& attempt) {
    const ForkedAnswer answer = inConfinedChild([&] { return outcome(attempt()); });
    const auto* text = std::get_if<std::string>(&answer);
    return text == nullptr ? std::get<ForkedFailure>(answer).reason : *text;
}

std::string ownStatus(const std::string& key) {
    return fieldOf(textOfFile("/proc/self/status"), key);
}

std::string statusInChild(const std::string& key) {
    const ForkedAnswer answer = inConfinedChild([&] { return ownStatus(key); });
    return std::get<std::string>(answer);
}

std::vector<std::string> examples() {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(TRELLANT_EXAMPLES)) {
        if (entry.path().extension() == ".omf") {
            files.push_back(entry.path().string());
        }
    }
    return files;
}

Said dumpedUnder(const std::string& wish, const cli::DumpOptions& options) {
    return saidWithStatus({.environment = {{variable, wish}}}, [&](cli::Console& console) {
        return static_cast<int>(runDump(options, console));
    });
}

class ConfinedChild : public ::testing::Test {
  protected:
    TemporaryDirectory folder_;
    std::string file_ = writeFile(folder_.file("old"), bytesOf("text"));
};

}  // namespace

TEST_F(ConfinedChild, WritesNoFile) {
    EXPECT_EQ(tried([&] { return ::open(file_.c_str(), O_WRONLY); }), "ENOSYS");
    EXPECT_EQ(tried([&] { return ::open(file_.c_str(), O_RDWR); }), "ENOSYS");
    EXPECT_EQ(tried([&] { return ::open(file_.c_str(), O_RDONLY | O_TRUNC); }), "ENOSYS");
    EXPECT_EQ(tried([&] { return ::open(folder_.file("new").c_str(), O_WRONLY | O_CREAT, 0666); }),
              "ENOSYS");
    EXPECT_EQ(tried([&] { return ::unlink(file_.c_str()); }), "ENOSYS");
    EXPECT_EQ(textOfFile(file_), "text");
    EXPECT_FALSE(std::filesystem::exists(folder_.file("new")));
}

TEST_F(ConfinedChild, CreatesFilesWhereItIsAllowedTo) {
    const std::string made = folder_.file("new");
    const ForkedAnswer answer = inConfinedChild(
        [&] {
            const int flags = O_WRONLY | O_CREAT | O_EXCL;
            return outcome(::open(made.c_str(), flags, 0666)) + ", " +
                   outcome(::open("/none", flags | O_TRUNC, 0666));
        },
        folder_.path().string());
    EXPECT_EQ(answer, ForkedAnswer("works, ENOSYS"));
    EXPECT_TRUE(std::filesystem::exists(made));
}

TEST_F(ConfinedChild, ReachesNoNetworkAndNoProgram) {
    EXPECT_EQ(tried([] { return ::socket(AF_INET, SOCK_STREAM, 0); }), "ENOSYS");
    EXPECT_EQ(tried([] { return ::socket(AF_UNIX, SOCK_DGRAM, 0); }), "ENOSYS");
    EXPECT_EQ(tried([] { return ::execl("/bin/true", "true", nullptr); }), "ENOSYS");
    EXPECT_EQ(tried([] { return ::fork(); }), "ENOSYS");
}

TEST_F(ConfinedChild, ReadsFilesAndWritesToOpenStreams) {
    EXPECT_EQ(inConfinedChild([&] { return textOfFile(file_); }), ForkedAnswer("text"));
    EXPECT_EQ(tried([] { return ::write(STDOUT_FILENO, "", 0); }), "works");
    EXPECT_EQ(tried([] {
                  pollfd out{.fd = STDOUT_FILENO, .events = POLLOUT, .revents = 0};
                  return ::poll(&out, 1, 0);
              }),
              "works");
}

TEST_F(ConfinedChild, ReadsOnlyWhatIsNamedWhereThatIsKnown) {
    if (landlockGeneration() == 0) {
        GTEST_SKIP() << "this kernel has no Landlock";
    }
    const auto opening = [](const std::string& path) {
        return [path] { return outcome(::open(path.c_str(), O_RDONLY)); };
    };
    const std::vector<std::string> named{file_};
    EXPECT_EQ(inConfinedChild(opening(file_), std::nullopt, named), ForkedAnswer("works"));
    EXPECT_EQ(inConfinedChild(opening("/etc/passwd"), std::nullopt, named), ForkedAnswer("EACCES"));
}

TEST_F(ConfinedChild, ConfinesItselfAlone) {
    const std::string before = ownStatus("Seccomp_filters:") + " " + ownStatus("NoNewPrivs:");
    EXPECT_EQ(statusInChild("Seccomp_filters:"),
              std::to_string(std::stoi(ownStatus("Seccomp_filters:")) + 1));
    EXPECT_EQ(statusInChild("NoNewPrivs:"), "1");
    EXPECT_EQ(ownStatus("Seccomp_filters:") + " " + ownStatus("NoNewPrivs:"), before);
}

TEST_F(ConfinedChild, GivesUpNothingWhenToldSo) {
    const EnvironmentVariable wish(variable, "off");
    EXPECT_EQ(tried([&] { return ::open(file_.c_str(), O_WRONLY); }), "works");
    EXPECT_EQ(statusInChild("Seccomp_filters:"), ownStatus("Seccomp_filters:"));
}

TEST_F(ConfinedChild, DoesNoWorkUnderAWishThatIsNone) {
    const EnvironmentVariable wish(variable, "yes");
    EXPECT_EQ(inConfinedChild([]() -> std::string { ::_exit(7); }),
              ForkedAnswer(ForkedFailure{ForkedFailure::Kind::exception,
                                         "TRELLANT_SANDBOX is neither \"require\" nor \"off\""}));
}

TEST(DumpConfined, SaysThatTheWishIsNoneBeforeItOpensTheFile) {
    const Said said = dumpedUnder("yes", {.file = "/none/mix.omf"});
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(said.errors, "trellant: TRELLANT_SANDBOX is neither \"require\" nor \"off\"\n");
    EXPECT_EQ(said.status, 2);
}

TEST(DumpConfined, SaysTheSameOfTheExamplesAsWithoutConfinement) {
    if (landlockGeneration() == 0) {
        GTEST_SKIP() << "this kernel has no Landlock";
    }
    const auto files = examples();
    ASSERT_EQ(files.size(), 3U);
    for (const std::string& file : files) {
        SCOPED_TRACE(file);
        for (const cli::DumpOptions& options :
             {cli::DumpOptions{.file = file}, cli::DumpOptions{.file = file, .toc = true},
              cli::DumpOptions{.file = file, .object = 1, .all = true},
              cli::DumpOptions{.file = file, .path = "CMOB[4294967295]"}}) {
            const Said confined = dumpedUnder("require", options);
            const Said free = dumpedUnder("off", options);
            EXPECT_EQ(confined.out, free.out);
            EXPECT_EQ(confined.errors, free.errors);
            EXPECT_EQ(confined.status, free.status);
            EXPECT_EQ(confined.status, options.path ? 1 : 0);
        }
    }
}

// The list is longer than any pipe, and its reader slower than the child.
TEST(DumpConfined, WaitsForAStreamThatReturnsAtOnce) {
    ContainerBuilder container;
    for (ObjectID object = 1; object <= 20'000; ++object) {
        container.addItem({.object = object, .segment = {BentoImmediate{}, false}});
    }
    const Said said =
        dumped(container.build(), {.toc = true, .all = true}, {.out = Listener::impatientPipe});
    EXPECT_EQ(std::count(said.out.begin(), said.out.end(), '\n'), 20'001);
    EXPECT_EQ(said.errors, "");
    EXPECT_EQ(said.status, 0);
}

}  // namespace trellant::testing
