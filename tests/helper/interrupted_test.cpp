// SPDX-License-Identifier: Apache-2.0
// A worker that is ended while it takes audio out: by the end of its host, by a cancellation.
#include "worker_fixture.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <sys/wait.h>
#include <thread>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/killed_host.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

/// Long enough to be met halfway.
constexpr std::size_t audioBytes = 33'554'432;

class HelperInterrupted : public WorkerTest {
  protected:
    HelperInterrupted() {
        constexpr MobID tone{1, 2, 3};
        OmfBuilder omf;
        omf.audioFile({.id = tone, .name = "Tone.wav", .media = Bytes(audioBytes), .length = 480});
        const ObjectID clip = omf.clip({.length = 480, .source = tone});
        const ObjectID slot =
            omf.slot({.editRate = Ratio{48'000}, .segment = omf.sequence({clip})});
        omf.composition({.name = "Long", .slots = {slot}});
        writeFile(path("long.omf"), omf.build());
        const std::string request =
            requestFor("extractAndInspect", path("long.omf"), path("work")).json();
        writeFile(path("request"), bytesOf(request));
    }

    /// In a child of the test or of its child.
    [[noreturn]] void becomeWorker() const {
        const int request = ::open(path("request").c_str(), O_RDONLY);
        ::dup2(request, STDIN_FILENO);
        const std::string program = workerPath();
        ::execl(program.c_str(), program.c_str(), nullptr);
        ::_exit(127);
    }
    [[nodiscard]] bool hasAudio() const { return std::filesystem::exists(path("work/Tone.wav")); }
    void awaitAudio() const {
        constexpr std::chrono::microseconds rest{100};
        constexpr int looks = 300'000;
        for (int look = 0; look < looks && !hasAudio(); ++look) {
            std::this_thread::sleep_for(rest);
        }
    }
    /// Again and again, until a worker is met before all of its audio is out. `end` gives how it
    /// ended.
    void expectNoHalfFile(const std::function<int()>& end,
                          const std::function<bool(int status)>& isInterrupted) const {
        constexpr int rounds = 50;
        for (int round = 0; round < rounds; ++round) {
            std::filesystem::remove_all(path("work"));
            const bool wasInterrupted = isInterrupted(end());
            if (!hasAudio()) {
                EXPECT_TRUE(wasInterrupted);
                return;
            }
            ASSERT_EQ(std::filesystem::file_size(path("work/Tone.wav")), audioBytes);
        }
        FAIL() << "no worker was met halfway";
    }
};

TEST_F(HelperInterrupted, KilledHostLeavesNoWorkerAndNoHalfFile) {
    expectNoHalfFile(
        [this] {
            KilledHost host([this](const std::function<void()>& ready) {
                ready();
                becomeWorker();
            });
            awaitAudio();
            host.kill();
            return host.endOfWorker();
        },
        [](int status) { return WIFEXITED(status) && WEXITSTATUS(status) == 2; });
}

TEST_F(HelperInterrupted, SignalOfACancellationLeavesNoHalfFile) {
    expectNoHalfFile(
        [this] {
            const pid_t process = ::fork();
            if (process == 0) {
                const int nowhere = ::open("/dev/null", O_WRONLY);
                ::dup2(nowhere, STDOUT_FILENO);
                ::dup2(nowhere, STDERR_FILENO);
                becomeWorker();
            }
            awaitAudio();
            ::kill(process, SIGTERM);
            int status = 0;
            EXPECT_EQ(::waitpid(process, &status, 0), process);
            return status;
        },
        [](int status) { return WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM; });
}

}  // namespace

}  // namespace trellant::testing
