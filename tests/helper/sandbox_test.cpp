// SPDX-License-Identifier: Apache-2.0
// The real worker and its confinement, as a host meets them.
#include "confined_child.h"
#include "environment_variable.h"
#include "worker_fixture.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <seccomp.h>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace trellant::testing {

namespace {

constexpr const char* variable = "TRELLANT_SANDBOX";

struct RefusedCall {
    int number;
    int reason;
    std::vector<scmp_arg_cmp> conditions{};
};

/// As a kernel without these calls; for the calling process and what it starts.
bool becomeOlderKernel(const std::vector<RefusedCall>& refused) {
    void* const filter = ::seccomp_init(SCMP_ACT_ALLOW);
    bool isWell = filter != nullptr;
    for (const RefusedCall& call : refused) {
        isWell = isWell &&
                 ::seccomp_rule_add_array(
                     filter, SCMP_ACT_ERRNO(static_cast<unsigned>(call.reason)), call.number,
                     static_cast<unsigned>(call.conditions.size()), call.conditions.data()) == 0;
    }
    return isWell && ::seccomp_load(filter) == 0;
}

const std::vector<RefusedCall> withoutLandlock{{SCMP_SYS(landlock_create_ruleset), ENOSYS, {}}};
const std::vector<RefusedCall> withoutSeccomp{
    {SCMP_SYS(seccomp), ENOSYS, {}},
    {SCMP_SYS(prctl), EINVAL, {{0, SCMP_CMP_EQ, PR_SET_SECCOMP, 0}}}};
const std::vector<RefusedCall> withoutPromiseOfPrivileges{
    {SCMP_SYS(prctl), EINVAL, {{0, SCMP_CMP_EQ, PR_SET_NO_NEW_PRIVS, 0}}}};
const std::vector<RefusedCall> withoutDumpControl{
    {SCMP_SYS(prctl), EINVAL, {{0, SCMP_CMP_EQ, PR_SET_DUMPABLE, 0}}}};

void becomeStream(const std::string& path, int flags, int stream) {
    const int descriptor = ::open(path.c_str(), flags | O_CLOEXEC, 0666);
    ::dup2(descriptor, stream);
}

class HelperSandbox : public WorkerTest {
  protected:
    void SetUp() override {
        if (landlockGeneration() == 0) {
            GTEST_SKIP() << "this kernel has no Landlock";
        }
    }
    [[nodiscard]] RequestText extraction() const {
        return requestFor("extractAndInspect", path("piece.omf"), path("work"));
    }
    void expectExtracted(const WorkerRun& answer) const {
        EXPECT_EQ(answer.errors, oneSlotProgress());
        EXPECT_EQ(answer.output, oneClipResult(jsonFileURL(path("piece.omf")),
                                               jsonFileURL(path("work/Tone.wav"))));
        EXPECT_EQ(answer.status, 0);
        EXPECT_EQ(readFile(path("work/Tone.wav")), toneWave());
    }

    /// A run on a kernel that refuses these calls, its streams being files in the folder "streams".
    [[nodiscard]] WorkerRun runOnKernel(const std::vector<RefusedCall>& refused,
                                        const char* sandbox) const {
        std::filesystem::create_directory(path("streams"));
        writeFile(path("streams/in"), bytesOf(extraction().json()));
        const EnvironmentVariable wish(variable, sandbox);
        const pid_t child = ::fork();
        if (child == 0) {
            becomeStream(path("streams/in"), O_RDONLY, STDIN_FILENO);
            becomeStream(path("streams/out"), O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
            becomeStream(path("streams/err"), O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
            if (becomeOlderKernel(refused)) {
                ::execl(workerPath().c_str(), "trellant-omf", nullptr);
            }
            ::_exit(127);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        WorkerRun answer{.output = textOfFile(path("streams/out")),
                         .errors = textOfFile(path("streams/err"))};
        if (WIFEXITED(status)) {
            answer.status = WEXITSTATUS(status);
        }
        return answer;
    }
    void expectMissing(const std::vector<RefusedCall>& refused, std::string_view message) {
        oneClipFile();
        expectExtracted(runOnKernel(refused, nullptr));
        std::filesystem::remove_all(path("work"));
        expectFailed(runOnKernel(refused, "require"), progressLineText("opening", "0.05"), message);
        expectExtracted(runOnKernel(refused, "off"));
    }
};

TEST_F(HelperSandbox, RequiredConfinementExtractsTheSame) {
    oneClipFile();
    const EnvironmentVariable wish(variable, "require");
    expectExtracted(run(extraction()));
}

TEST_F(HelperSandbox, RequiredConfinementInspectsAndTouchesNothing) {
    const std::string source = oneClipFile();
    std::filesystem::create_directory(path("work"));
    const EnvironmentVariable wish(variable, "require");
    for (const std::string_view operation : {"inspect", "verifyExport"}) {
        SCOPED_TRACE(operation);
        const auto answer = run(requestFor(operation, source, path("work")));
        EXPECT_EQ(answer.output, oneClipResult(jsonFileURL(source)));
        EXPECT_EQ(answer.errors, oneSlotProgress());
        EXPECT_EQ(answer.status, 0);
    }
    EXPECT_EQ(everything(), (std::vector<std::string>{"piece.omf", "work"}));
}

TEST_F(HelperSandbox, RequiredConfinementStillReplacesTheFirstWhenAllNamesAreTaken) {
    oneClipFile();
    std::filesystem::create_directory(path("work"));
    writeFile(path("work/Tone.wav"), bytesOf("old"));
    for (int number = 2; number <= 999; ++number) {
        writeFile(path("work/Tone_" + std::to_string(number) + ".wav"), {});
    }
    const EnvironmentVariable wish(variable, "require");
    expectExtracted(run(extraction()));
}

TEST_F(HelperSandbox, OffExtractsTheSame) {
    oneClipFile();
    const EnvironmentVariable wish(variable, "off");
    expectExtracted(run(extraction()));
}

TEST_F(HelperSandbox, AnyOtherWishFailsBeforeTheFileIsOpened) {
    const EnvironmentVariable wish(variable, "yes");
    expectFailed(run(requestFor("inspect", path("missing.omf"), "")),
                 progressLineText("opening", "0.05"),
                 "unexpected failure: TRELLANT_SANDBOX is neither \"require\" nor \"off\"");
}

TEST_F(HelperSandbox, WorkDirectoryThatCannotBeMadeComesFirst) {
    writeFile(path("work"), {});
    const EnvironmentVariable wish(variable, "yes");
    expectFailed(
        run(extraction()), progressLineText("opening", "0.05"),
        "unexpected failure: cannot create directory \"" + path("work") + "\": File exists");
}

TEST_F(HelperSandbox, KernelWithoutLandlockIsAnErrorOnlyWhenRequired) {
    expectMissing(withoutLandlock,
                  "unexpected failure: cannot confine itself with Landlock: "
                  "Function not implemented");
}

TEST_F(HelperSandbox, KernelWithoutSeccompIsAnErrorOnlyWhenRequired) {
    expectMissing(withoutSeccomp,
                  "unexpected failure: cannot confine itself with seccomp: Invalid argument");
}

TEST_F(HelperSandbox, KernelWithoutNoNewPrivilegesIsAnErrorOnlyWhenRequired) {
    expectMissing(withoutPromiseOfPrivileges,
                  "unexpected failure: cannot confine itself with no_new_privs: Invalid argument");
}

TEST_F(HelperSandbox, KernelThatInsistsOnDumpsIsAnErrorOnlyWhenRequired) {
    expectMissing(withoutDumpControl,
                  "unexpected failure: cannot confine itself with forbidden core dumps: "
                  "Invalid argument");
}

/// A worker that waits at its result, since nobody empties the pipe for it.
class HelperSandboxFromOutside : public HelperSandbox {
  protected:
    /// What the system says of a worker started with this wish, while it lives.
    [[nodiscard]] std::string statusOfWaitingWorker(const char* sandbox) const {
        writeFile(path("request"), bytesOf(extraction().json()));
        std::array<int, 2> output{};
        std::array<int, 2> errors{};
        EXPECT_EQ(::pipe2(output.data(), O_CLOEXEC), 0);
        EXPECT_EQ(::pipe2(errors.data(), O_CLOEXEC), 0);
        fill(output[1]);
        const EnvironmentVariable wish(variable, sandbox);
        const pid_t child = ::fork();
        if (child == 0) {
            becomeStream(path("request"), O_RDONLY, STDIN_FILENO);
            ::dup2(output[1], STDOUT_FILENO);
            ::dup2(errors[1], STDERR_FILENO);
            ::execl(workerPath().c_str(), "trellant-omf", nullptr);
            ::_exit(127);
        }
        ::close(output[1]);
        ::close(errors[1]);
        readUntil(errors[0], progressLineText("finishing", "0.95"));
        std::string status = textOfFile("/proc/" + std::to_string(child) + "/status");
        ::close(output[0]);
        int end = 0;
        EXPECT_EQ(::waitpid(child, &end, 0), child);
        EXPECT_TRUE(WIFEXITED(end));
        ::close(errors[0]);
        return status;
    }
    [[nodiscard]] static std::string ownField(const std::string& key) {
        return fieldOf(textOfFile("/proc/self/status"), key);
    }

  private:
    static void fill(int descriptor) {
        const std::string bytes(4'096, ' ');
        ::fcntl(descriptor, F_SETFL, O_NONBLOCK);
        while (::write(descriptor, bytes.data(), bytes.size()) > 0) {
        }
        ::fcntl(descriptor, F_SETFL, 0);
    }
    static void readUntil(int descriptor, std::string_view line) {
        std::string text;
        char byte = 0;
        while (text.find(line) == std::string::npos) {
            ASSERT_EQ(::read(descriptor, &byte, 1), 1) << text;
            text += byte;
        }
    }
};

TEST_F(HelperSandboxFromOutside, WorkerHasOneFilterMoreThanItsHostAndNoNewPrivileges) {
    oneClipFile();
    const int own = std::stoi(ownField("Seccomp_filters:"));
    const std::string status = statusOfWaitingWorker(nullptr);
    EXPECT_EQ(fieldOf(status, "Seccomp:"), "2");
    EXPECT_EQ(fieldOf(status, "Seccomp_filters:"), std::to_string(own + 1));
    EXPECT_EQ(fieldOf(status, "NoNewPrivs:"), "1");
}

TEST_F(HelperSandboxFromOutside, WorkerThatIsToldOffIsAsItsHost) {
    oneClipFile();
    const std::string status = statusOfWaitingWorker("off");
    for (const char* const key : {"Seccomp:", "Seccomp_filters:", "NoNewPrivs:"}) {
        SCOPED_TRACE(key);
        EXPECT_EQ(fieldOf(status, key), ownField(key));
    }
}

}  // namespace

}  // namespace trellant::testing
