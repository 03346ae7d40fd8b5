// SPDX-License-Identifier: Apache-2.0
// Each thing that the layer of files forbids or leaves, tried by a child that has entered this
// layer alone.
#include "filesystem_rules.h"

#include "confined_child.h"
#include "folder_test.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <array>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <termios.h>
#include <trellant_testing/byte_writer.h>
#include <unistd.h>
#include <vector>

namespace trellant::testing {

namespace {

long opened(const std::string& path, int flags) {
    return ::open(path.c_str(), flags | O_CLOEXEC, 0666);
}

long connectedTo(const sockaddr* address, std::size_t size, int domain) {
    const int endpoint = ::socket(domain, SOCK_STREAM, 0);
    return ::connect(endpoint, address, static_cast<socklen_t>(size));
}

long bound(const sockaddr* address, std::size_t size, int domain) {
    const int endpoint = ::socket(domain, SOCK_STREAM, 0);
    return ::bind(endpoint, address, static_cast<socklen_t>(size));
}

sockaddr_un socketAddress(const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    name.copy(static_cast<char*>(address.sun_path), sizeof address.sun_path - 1);
    return address;
}

const sockaddr* plain(const void* address) {
    return static_cast<const sockaddr*>(address);
}

sockaddr_in localPort(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// A folder "work" that may be written to, with "old" and the folder "inner" with "file" in it, and
/// beside it the folder "other" with "kept".
class FilesystemRules : public FolderTest {
  protected:
    void SetUp() override {
        if (landlockGeneration() == 0) {
            GTEST_SKIP() << "this kernel has no Landlock";
        }
        std::filesystem::create_directories(path("work/inner"));
        std::filesystem::create_directory(path("other"));
        for (const char* const file : {"work/old", "work/inner/file", "other/kept"}) {
            writeFile(path(file), bytesOf("text"));
        }
    }

    /// With "work" to write to.
    [[nodiscard]] std::string tried(const std::function<long()>& attempt) const {
        return triedWith({.writableDirectory = path("work")}, attempt);
    }
    /// With nothing to write to.
    [[nodiscard]] static std::string triedReading(const std::function<long()>& attempt) {
        return triedWith({}, attempt);
    }
    /// With "work" to write to and these to read.
    [[nodiscard]] std::string triedReadingOnly(const std::vector<std::string>& readable,
                                               const std::function<long()>& attempt) const {
        return triedWith({.writableDirectory = path("work"), .readablePaths = readable}, attempt);
    }
    [[nodiscard]] std::string textOf(std::string_view name) const { return textOfFile(path(name)); }

  private:
    static std::string triedWith(const ConfinedNeeds& needs, const std::function<long()>& attempt) {
        return reportFromChild(
            [&] {
                ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
                return restrictFiles(needs);
            },
            [&] { return outcome(attempt()); });
    }
};

class FilesystemRulesOfLaterKernels : public FilesystemRules {
  protected:
    static bool hasGeneration(long generation) { return landlockGeneration() >= generation; }
};

TEST_F(FilesystemRules, FilesAnywhereCanBeRead) {
    EXPECT_EQ(tried([] { return opened("/etc/passwd", O_RDONLY); }), "works");
    EXPECT_EQ(tried([&] { return opened(path("other/kept"), O_RDONLY); }), "works");
    EXPECT_EQ(triedReading([&] { return opened(path("work/old"), O_RDONLY); }), "works");
}

TEST_F(FilesystemRules, FoldersAnywhereCanBeRead) {
    const auto firstEntry = [](const std::string& folder) {
        DIR* const stream = ::opendir(folder.c_str());
        // NOLINTNEXTLINE(concurrency-mt-unsafe)
        return stream != nullptr && ::readdir(stream) != nullptr ? 0L : -1L;
    };
    EXPECT_EQ(tried([&] { return firstEntry("/"); }), "works");
    EXPECT_EQ(triedReading([&] { return firstEntry(path("other")); }), "works");
}

TEST_F(FilesystemRules, OnlyWhatIsNamedIsReadWhereThatIsKnown) {
    const auto reads = [&](std::string_view name) {
        return triedReadingOnly({path("other/kept")}, [&] { return opened(path(name), O_RDONLY); });
    };
    writeFile(path("other/secret"), bytesOf("text"));
    EXPECT_EQ(reads("other/kept"), "works");
    EXPECT_EQ(reads("other/secret"), "EACCES");
    EXPECT_EQ(reads("other"), "EACCES");
    EXPECT_EQ(reads("none"), "ENOENT");
    EXPECT_EQ(triedReadingOnly({}, [] { return opened("/etc/passwd", O_RDONLY); }), "EACCES");
}

TEST_F(FilesystemRules, FoldersThatAreNamedAreReadWithAllBelow) {
    const auto reads = [&](const std::string& name) {
        return triedReadingOnly({path("other"), path("none")},
                                [&] { return opened(name, O_RDONLY); });
    };
    std::filesystem::create_directory_symlink("/etc", path("other/link"));
    EXPECT_EQ(reads(path("other")), "works");
    EXPECT_EQ(reads(path("other/kept")), "works");
    EXPECT_EQ(reads(path("other/link/passwd")), "EACCES");
}

TEST_F(FilesystemRules, WhatNoRuleCanNameLeavesTheOthersInForce) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    const std::string pipe = "/proc/self/fd/" + std::to_string(ends[0]);
    EXPECT_EQ(triedReadingOnly({pipe, path("none"), path("other/kept")},
                               [&] { return opened(path("other/kept"), O_RDONLY); }),
              "works");
    EXPECT_EQ(triedReadingOnly({pipe}, [] { return opened("/etc/passwd", O_RDONLY); }), "EACCES");
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST_F(FilesystemRules, WhatIsWrittenIsReadToo) {
    const auto writesAndReads = [&] {
        return opened(path("work/new"), O_WRONLY | O_CREAT) < 0
                   ? -1
                   : opened(path("work/new"), O_RDONLY);
    };
    EXPECT_EQ(triedReadingOnly({path("other/kept")}, writesAndReads), "works");
    EXPECT_EQ(triedReadingOnly({}, [&] { return opened(path("other/kept"), O_WRONLY); }), "EACCES");
}

TEST_F(FilesystemRules, FilesAreCreatedInTheWorkDirectoryAndBelow) {
    const int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW;
    EXPECT_EQ(tried([&] { return opened(path("work/new"), flags); }), "works");
    EXPECT_EQ(tried([&] { return opened(path("work/inner/new"), flags); }), "works");
    EXPECT_TRUE(std::filesystem::exists(path("work/new")));
    EXPECT_TRUE(std::filesystem::exists(path("work/inner/new")));
}

TEST_F(FilesystemRules, FilesOfTheWorkDirectoryAreRemoved) {
    EXPECT_EQ(tried([&] { return ::unlink(path("work/old").c_str()); }), "works");
    EXPECT_FALSE(std::filesystem::exists(path("work/old")));
}

TEST_F(FilesystemRules, NothingIsCreatedOutside) {
    EXPECT_EQ(tried([&] { return opened(path("other/new"), O_WRONLY | O_CREAT | O_EXCL); }),
              "EACCES");
    EXPECT_EQ(tried([&] { return opened(path("new"), O_WRONLY | O_CREAT | O_EXCL); }), "EACCES");
    EXPECT_FALSE(std::filesystem::exists(path("other/new")));
}

TEST_F(FilesystemRules, NothingIsWrittenOutside) {
    EXPECT_EQ(tried([&] { return opened(path("other/kept"), O_WRONLY); }), "EACCES");
    EXPECT_EQ(tried([&] { return opened(path("other/kept"), O_RDWR); }), "EACCES");
    EXPECT_EQ(tried([&] { return opened(path("other/kept"), O_WRONLY | O_APPEND); }), "EACCES");
}

TEST_F(FilesystemRules, NothingIsRemovedOutside) {
    EXPECT_EQ(tried([&] { return ::unlink(path("other/kept").c_str()); }), "EACCES");
    EXPECT_EQ(textOf("other/kept"), "text");
}

TEST_F(FilesystemRules, WithoutAWorkDirectoryNothingIsWrittenAnywhere) {
    EXPECT_EQ(triedReading([&] { return opened(path("work/new"), O_WRONLY | O_CREAT); }), "EACCES");
    EXPECT_EQ(triedReading([&] { return opened(path("work/old"), O_WRONLY); }), "EACCES");
    EXPECT_EQ(triedReading([&] { return ::unlink(path("work/old").c_str()); }), "EACCES");
    EXPECT_EQ(triedReading([] { return opened("/dev/null", O_WRONLY); }), "EACCES");
}

TEST_F(FilesystemRules, LinkPlantedInTheWorkDirectoryLeadsNowhere) {
    std::filesystem::create_symlink(path("other/kept"), path("work/link"));
    std::filesystem::create_symlink(path("other/new"), path("work/dangling"));
    std::filesystem::create_directory_symlink(path("other"), path("work/folder"));
    EXPECT_EQ(tried([&] { return opened(path("work/link"), O_WRONLY); }), "EACCES");
    EXPECT_EQ(tried([&] { return opened(path("work/dangling"), O_WRONLY | O_CREAT); }), "EACCES");
    EXPECT_EQ(tried([&] { return opened(path("work/folder/new"), O_WRONLY | O_CREAT); }), "EACCES");
    EXPECT_EQ(tried([&] { return ::unlink(path("work/folder/kept").c_str()); }), "EACCES");
}

TEST_F(FilesystemRules, WorkDirectoryBehindALinkCanBeWrittenTo) {
    std::filesystem::create_directory_symlink(path("work"), path("shortcut"));
    const std::string report = reportFromChild(
        [&] {
            ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
            return restrictFiles({.writableDirectory = path("shortcut")});
        },
        [&] { return outcome(opened(path("shortcut/new"), O_WRONLY | O_CREAT | O_EXCL)); });
    EXPECT_EQ(report, "works");
}

TEST_F(FilesystemRules, NothingMovesOutOfTheWorkDirectoryOrIntoIt) {
    const auto moved = [&](const char* from, const char* to) {
        return tried([&] { return std::rename(path(from).c_str(), path(to).c_str()); });
    };
    EXPECT_EQ(moved("work/old", "other/old"), "EACCES");
    EXPECT_EQ(moved("other/kept", "work/kept"), "EACCES");
    EXPECT_EQ(moved("work/inner/file", "work/file"), "EXDEV");
}

TEST_F(FilesystemRules, FilesOutsideGetNoNameInTheWorkDirectory) {
    EXPECT_EQ(tried([&] { return ::link(path("other/kept").c_str(), path("work/kept").c_str()); }),
              "EXDEV");
}

TEST_F(FilesystemRules, OnlyRegularFilesAreMade) {
    const std::string place = path("work/new");
    const sockaddr_un address = socketAddress(place);
    ASSERT_LT(place.size(), sizeof address.sun_path);
    EXPECT_EQ(tried([&] { return ::mkdir(place.c_str(), 0777); }), "EACCES");
    EXPECT_EQ(tried([&] { return ::symlink("old", place.c_str()); }), "EACCES");
    EXPECT_EQ(tried([&] { return ::mkfifo(place.c_str(), 0666); }), "EACCES");
    EXPECT_EQ(tried([&] { return bound(plain(&address), sizeof address, AF_UNIX); }), "EACCES");
    EXPECT_EQ(tried([&] { return ::rmdir(path("work/inner").c_str()); }), "EACCES");
    // The one device that needs no privileges to be made.
    EXPECT_EQ(tried([&] { return ::mknod(place.c_str(), S_IFCHR | 0666, 0); }), "EACCES");
    EXPECT_FALSE(std::filesystem::exists(place));
}

TEST_F(FilesystemRules, NoProgramIsExecuted) {
    EXPECT_EQ(tried([] { return ::execl("/bin/true", "true", nullptr); }), "EACCES");
}

TEST_F(FilesystemRules, OwnMemoryIsNoFileToWriteTo) {
    EXPECT_EQ(tried([] { return opened("/proc/self/mem", O_RDWR); }), "EACCES");
}

TEST_F(FilesystemRules, DescriptorsThatAreOpenStayUsable) {
    const int descriptor = static_cast<int>(opened(path("other/kept"), O_WRONLY | O_TRUNC));
    EXPECT_EQ(triedReading([&] { return ::write(descriptor, "later", 5); }), "works");
    ::close(descriptor);
    EXPECT_EQ(textOf("other/kept"), "later");
}

TEST_F(FilesystemRules, WorkDirectoryThatIsGoneRestrictsNothing) {
    const std::string report = reportFromChild(
        [] { return 0; },
        [&] {
            ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
            return std::string(
                       ::strerrorname_np(restrictFiles({.writableDirectory = path("gone")}))) +
                   " " + outcome(opened(path("other/new"), O_WRONLY | O_CREAT));
        });
    EXPECT_EQ(report, "ENOENT works");
}

TEST_F(FilesystemRulesOfLaterKernels, FilesThatAreThereKeepTheirLength) {
    if (!hasGeneration(3)) {
        GTEST_SKIP() << "needs Landlock 3";
    }
    EXPECT_EQ(tried([&] { return opened(path("work/old"), O_WRONLY | O_TRUNC); }), "EACCES");
    EXPECT_EQ(tried([&] { return ::truncate(path("work/old").c_str(), 1); }), "EACCES");
    EXPECT_EQ(tried([&] {
                  const int descriptor = static_cast<int>(opened(path("work/old"), O_WRONLY));
                  return ::ftruncate(descriptor, 1);
              }),
              "EACCES");
    EXPECT_EQ(textOf("work/old"), "text");
}

TEST_F(FilesystemRulesOfLaterKernels, TcpIsOutOfReach) {
    if (!hasGeneration(4)) {
        GTEST_SKIP() << "needs Landlock 4";
    }
    constexpr std::uint16_t anyPort = 0;
    constexpr std::uint16_t discardPort = 9;
    const sockaddr_in own = localPort(anyPort);
    const sockaddr_in other = localPort(discardPort);
    EXPECT_EQ(tried([&] { return bound(plain(&own), sizeof own, AF_INET); }), "EACCES");
    EXPECT_EQ(tried([&] { return connectedTo(plain(&other), sizeof other, AF_INET); }), "EACCES");
}

TEST_F(FilesystemRulesOfLaterKernels, DevicesTakeNoCommands) {
    if (!hasGeneration(5)) {
        GTEST_SKIP() << "needs Landlock 5";
    }
    EXPECT_EQ(tried([] {
                  termios settings{};
                  const int descriptor = static_cast<int>(opened("/dev/null", O_RDONLY));
                  return ::ioctl(descriptor, TCGETS, &settings);
              }),
              "EACCES");
}

TEST_F(FilesystemRulesOfLaterKernels, AbstractSocketsOutsideAreOutOfReach) {
    if (!hasGeneration(6)) {
        GTEST_SKIP() << "needs Landlock 6";
    }
    const std::string name = std::string(1, '\0') + path("abstract");
    const sockaddr_un address = socketAddress(name);
    const std::size_t size = offsetof(sockaddr_un, sun_path) + name.size();
    ASSERT_LE(size, sizeof address);
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(::bind(listener, plain(&address), static_cast<socklen_t>(size)), 0);
    ASSERT_EQ(::listen(listener, 1), 0);
    EXPECT_EQ(tried([&] { return connectedTo(plain(&address), size, AF_UNIX); }), "EPERM");
    ::close(listener);
}

TEST_F(FilesystemRulesOfLaterKernels, ProcessesOutsideGetNoSignal) {
    if (!hasGeneration(6)) {
        GTEST_SKIP() << "needs Landlock 6";
    }
    EXPECT_EQ(tried([] { return ::kill(::getppid(), 0); }), "EPERM");
    EXPECT_EQ(tried([] { return ::kill(::getpid(), 0); }), "works");
}

}  // namespace

}  // namespace trellant::testing
