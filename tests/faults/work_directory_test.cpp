// SPDX-License-Identifier: Apache-2.0
// Work directories that fill up, vanish or may not be written to.
#include "sweep.h"

#include <trellant/protocol/messages.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <trellant_testing/requests.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

constexpr uid_t nobody = 65'534;

const std::string openingAndMapping = progressLineText("opening", "0.05") +
                                      progressLineText("reconstructing", "0.15") +
                                      progressLineText("reconstructing", "0.15");

std::string refused(const std::string& what) {
    return what + " is not permitted here: " + std::strerror(errno);
}

/// A view of the mounts that is the worker's alone; whoever is not root becomes it within.
std::string ownMounts() {
    const uid_t user = ::geteuid();
    const gid_t group = ::getegid();
    const int rights = user == 0 ? 0 : CLONE_NEWUSER;
    if (::unshare(CLONE_NEWNS | rights) != 0) {
        return refused("a name space of mounts");
    }
    if (user != 0) {
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    }
    if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        return refused("keeping mounts private");
    }
    return "";
}

class WorkDirectory : public TracedTest {
  protected:
    WorkDirectory() { std::filesystem::create_directory(scene_.work()); }

    TracedRun runAfter(const std::function<std::string()>& prepare, Director director = {}) {
        return runTraced({.input = scene_.request("extractAndInspect"),
                          .places = scene_.places(),
                          .director = std::move(director),
                          .prepare = prepare});
    }
    static void expectFailed(const TracedRun& traced, const std::string& line) {
        EXPECT_EQ(traced.run.errors, openingAndMapping + line);
        EXPECT_EQ(traced.run.output, "");
        EXPECT_EQ(traced.run.status, 2);
    }
    std::size_t filesInWork() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(scene_.work()), {}));
    }

    Scene scene_;
};

TEST_F(WorkDirectory, DiskThatIsFullIsAFailure) {
    const auto run = runAfter([this] {
        if (auto reason = ownMounts(); !reason.empty()) {
            return reason;
        }
        // Room for the folder itself; a page is more than the audio takes.
        constexpr const char* room = "size=4k,nr_inodes=8";
        if (::mount("none", scene_.work().c_str(), "tmpfs", 0, room) != 0) {
            return refused("a small file system");
        }
        writeFile((scene_.work() + "/fills.bin"), Bytes(4'096));
        return std::string();
    });
    if (!run.notPermitted.empty()) {
        GTEST_SKIP() << run.notPermitted;
    }
    expectFailed(run, refusal("write", scene_.extractedFile(), ENOSPC));
}

TEST_F(WorkDirectory, ThatIsMountedReadOnlyIsAFailure) {
    const auto run = runAfter([this] {
        if (auto reason = ownMounts(); !reason.empty()) {
            return reason;
        }
        const std::string path = scene_.work();
        if (::mount(path.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) != 0 ||
            ::mount(nullptr, path.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) !=
                0) {
            return refused("a read-only mount");
        }
        return std::string();
    });
    if (!run.notPermitted.empty()) {
        GTEST_SKIP() << run.notPermitted;
    }
    expectFailed(run, refusal("create", scene_.extractedFile(), EROFS));
    EXPECT_EQ(filesInWork(), 0U);
}

TEST_F(WorkDirectory, ThatBelongsToSomebodyElseIsAFailure) {
    ::chmod(scene_.work().c_str(), 0555);
    const auto run = runAfter([] {
        if (::geteuid() == 0 && ::setresuid(nobody, nobody, nobody) != 0) {
            return refused("another user");
        }
        return std::string();
    });
    ::chmod(scene_.work().c_str(), 0755);
    if (!run.notPermitted.empty()) {
        GTEST_SKIP() << run.notPermitted;
    }
    expectFailed(run, refusal("create", scene_.extractedFile(), EACCES));
    EXPECT_EQ(filesInWork(), 0U);
}

TEST_F(WorkDirectory, ThatVanishesBeforeTheFileIsMadeIsAFailureAndIsNotMadeAgain) {
    const auto run = runAfter({}, [this](const SeenCall& seen, pid_t) {
        if (seen.kind == CallKind::nameLook) {
            std::filesystem::remove_all(scene_.work());
        }
        return Intervention{};
    });
    expectFailed(run, refusal("create", scene_.extractedFile(), ENOENT));
    EXPECT_FALSE(std::filesystem::exists(scene_.work()));
}

TEST_F(WorkDirectory, ThatVanishesWhileTheFileIsWrittenLosesTheAudio) {
    const auto run = runAfter({}, [this](const SeenCall& seen, pid_t) {
        if (seen.kind == CallKind::fileWrite) {
            std::filesystem::remove_all(scene_.work());
        }
        return Intervention{};
    });
    EXPECT_EQ(run.run.status, 0) << run.run.errors;
    EXPECT_FALSE(std::filesystem::exists(scene_.work()));
    const auto result = decodeResult(run.run.output);
    EXPECT_EQ(result.timeline.essences.at(0).fileURL, std::nullopt);
    ASSERT_EQ(result.timeline.unsupportedFeatures.size(), 1U);
    EXPECT_EQ(result.timeline.unsupportedFeatures[0].description,
              "embedded audio essence could not be extracted");
}

}  // namespace

}  // namespace trellant::testing
