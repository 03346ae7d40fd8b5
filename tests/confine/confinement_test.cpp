// SPDX-License-Identifier: Apache-2.0
// All layers together, and the choice between them.
#include "confined_child.h"
#include "confinement_layers.h"
#include "environment_variable.h"
#include "folder_test.h"

#include <trellant/confine/confinement.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sys/prctl.h>
#include <trellant_testing/byte_writer.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

Sandbox wish(const char* value) {
    const EnvironmentVariable variable("TRELLANT_SANDBOX", value);
    return sandboxFromEnvironment();
}

std::string complaintAbout(const char* value) {
    try {
        static_cast<void>(wish(value));
    } catch (const ConfinementError& error) {
        return error.what();
    }
    return {};
}

TEST(SandboxWish, UnsetOrEmptyIsWherePossible) {
    EXPECT_EQ(wish(nullptr), Sandbox::wherePossible);
    EXPECT_EQ(wish(""), Sandbox::wherePossible);
}

TEST(SandboxWish, RequireAndOffAreTaken) {
    EXPECT_EQ(wish("require"), Sandbox::required);
    EXPECT_EQ(wish("off"), Sandbox::off);
}

TEST(SandboxWish, AnythingElseIsAnError) {
    for (const char* const value : {"OFF", "required", "0", " off", "off "}) {
        SCOPED_TRACE(value);
        EXPECT_EQ(complaintAbout(value), "TRELLANT_SANDBOX is neither \"require\" nor \"off\"");
    }
}

class Confinement : public FolderTest {
  protected:
    void SetUp() override {
        std::filesystem::create_directory(path("work"));
        writeFile(path("work/old"), bytesOf("text"));
    }
    [[nodiscard]] std::string confined(const std::optional<std::string>& writable,
                                       const std::function<std::string()>& attempt,
                                       Sandbox sandbox = Sandbox::wherePossible) const {
        return reportFromChild(
            [&] {
                confine(sandbox, {.writableDirectory = writable});
                return 0;
            },
            attempt);
    }
    /// In the child, of itself.
    static std::string ownStatus(const std::string& key) {
        return fieldOf(textOfFile("/proc/self/status"), key);
    }
    static std::string ownCalls() { return ownStatus("Seccomp_filters:"); }
};

TEST_F(Confinement, LayersComeInTheOrderInWhichEachCanBeEntered) {
    std::vector<std::string> names;
    for (const ConfinementLayer& layer : confinementLayers()) {
        names.emplace_back(layer.name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"no_new_privs", "forbidden core dumps", "Landlock",
                                               "seccomp"}));
}

TEST_F(Confinement, OffGivesUpNothing) {
    const std::string before = ownCalls() + " " + ownStatus("NoNewPrivs:");
    EXPECT_EQ(confined(
                  {}, [] { return ownCalls() + " " + ownStatus("NoNewPrivs:"); }, Sandbox::off),
              before);
    EXPECT_EQ(
        confined(
            {}, [&] { return outcome(::open(path("work/new").c_str(), O_WRONLY | O_CREAT, 0666)); },
            Sandbox::off),
        "works");
}

TEST_F(Confinement, PrivilegesAndDumpsAreGivenUp) {
    EXPECT_EQ(confined({}, [] { return ownStatus("NoNewPrivs:"); }), "1");
    const std::string limit =
        confined({}, [] { return fieldOf(textOfFile("/proc/self/limits"), "Max core file size"); });
    EXPECT_EQ(limit.substr(0, limit.find_last_not_of(' ') + 1),
              "0                    0                    bytes");
}

TEST_F(Confinement, MemoryIsNotDumpable) {
    const auto layers = confinementLayers();
    const auto layer = std::find_if(layers.begin(), layers.end(), [](const auto& each) {
        return each.name == "forbidden core dumps";
    });
    ASSERT_NE(layer, layers.end());
    EXPECT_EQ(reportFromChild([&] { return layer->enter({}); },
                              [] { return std::to_string(::prctl(PR_GET_DUMPABLE)); }),
              "0");
}

TEST_F(Confinement, ExactlyOneFilterIsAdded) {
    const std::string before = ownCalls();
    ASSERT_FALSE(before.empty());
    EXPECT_EQ(confined({}, [] { return ownCalls(); }), std::to_string(std::stoi(before) + 1));
}

TEST_F(Confinement, WorkDirectoryIsTheOnlyPlaceToWrite) {
    const auto created = [&](const char* name) {
        return confined(path("work"), [&] {
            return outcome(::open(path(name).c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666));
        });
    };
    EXPECT_EQ(created("work/new"), "works");
    if (landlockGeneration() == 0) {
        GTEST_SKIP() << "this kernel has no Landlock";
    }
    EXPECT_EQ(created("new"), "EACCES");
    EXPECT_EQ(everything(), (std::vector<std::string>{"work", "work/new", "work/old"}));
}

TEST_F(Confinement, WithoutAWorkDirectoryNothingCanBeWritten) {
    EXPECT_EQ(
        confined(
            {},
            [&] { return outcome(::open(path("work/new").c_str(), O_WRONLY | O_CREAT, 0666)); }),
        "ENOSYS");
    EXPECT_EQ(confined({}, [&] { return outcome(::unlink(path("work/old").c_str())); }), "ENOSYS");
}

TEST_F(Confinement, NothingLeavesTheWorkDirectory) {
    EXPECT_EQ(
        confined(
            path("work"),
            [&] { return outcome(std::rename(path("work/old").c_str(), path("old").c_str())); }),
        "ENOSYS");
}

TEST_F(Confinement, OwnMemoryIsNoFileToWriteTo) {
    const auto attempt = [] { return outcome(::open("/proc/self/mem", O_RDWR)); };
    EXPECT_EQ(confined({}, attempt), "ENOSYS");
    if (landlockGeneration() == 0) {
        GTEST_SKIP() << "this kernel has no Landlock";
    }
    EXPECT_EQ(confined(path("work"), attempt), "EACCES");
}

TEST_F(Confinement, ReadingStaysFree) {
    EXPECT_EQ(confined({}, [&] { return textOfFile(path("work/old")); }), "text");
    EXPECT_EQ(confined(path("work"), [] { return outcome(::open("/etc/passwd", O_RDONLY)); }),
              "works");
}

TEST_F(Confinement, StreamsAreAwaitedWhenThatIsNeeded) {
    const auto waited = [](bool awaitsStreams) {
        return reportFromChild(
            [&] {
                confine(Sandbox::wherePossible, {.awaitsStreams = awaitsStreams});
                return 0;
            },
            [] { return outcome(::poll(nullptr, 0, 0)); });
    };
    EXPECT_EQ(waited(true), "works");
    EXPECT_EQ(waited(false), "ENOSYS");
}

}  // namespace

}  // namespace trellant::testing
