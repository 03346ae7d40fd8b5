// SPDX-License-Identifier: Apache-2.0
// Hosts that die, that read slowly, and that do not say what they want.
#include "sweep.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <trellant_testing/requests.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

/// So many clips make a result longer than a small pipe holds, several times over.
constexpr int manyClips = 200;
constexpr int smallPipe = 4'096;

struct PipeEnds {
    int reading = -1;
    int writing = -1;
};

PipeEnds makePipe() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    return {ends[0], ends[1]};
}

[[noreturn]] void becomeWorkerOf(int input, int output, int errors) {
    ::dup2(input, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(errors, STDERR_FILENO);
    const std::string program = workerPath();
    ::execl(program.c_str(), program.c_str(), nullptr);
    ::_exit(127);
}

/// A host that starts a worker, tells its number, and is killed: before its request is whole, or
/// with the result half read.
[[noreturn]] void becomeHost(const std::string& request, bool isWhole, int number) {
    const PipeEnds input = makePipe();
    const PipeEnds output = makePipe();
    const PipeEnds errors = makePipe();
    ::fcntl(output.writing, F_SETPIPE_SZ, smallPipe);
    const pid_t worker = ::fork();
    if (worker == 0) {
        becomeWorkerOf(input.reading, output.writing, errors.writing);
    }
    ::close(input.reading);
    ::close(output.writing);
    static_cast<void>(::write(number, &worker, sizeof(worker)));
    const std::string sent = isWhole ? request : request.substr(0, request.size() / 2);
    static_cast<void>(::write(input.writing, sent.data(), sent.size()));
    if (isWhole) {
        ::close(input.writing);
        char first = 0;
        static_cast<void>(::read(output.reading, &first, 1));
    }
    ::raise(SIGKILL);
    ::_exit(0);
}

/// Orphans of the test's children become the test's own for a while, so that their ends are seen.
class Adoption {
  public:
    Adoption() { ::prctl(PR_SET_CHILD_SUBREAPER, 1); }
    ~Adoption() { ::prctl(PR_SET_CHILD_SUBREAPER, 0); }
    Adoption(const Adoption&) = delete;
    Adoption& operator=(const Adoption&) = delete;
    Adoption(Adoption&&) = delete;
    Adoption& operator=(Adoption&&) = delete;
};

/// How the worker of a killed host ended.
int endOfOrphan(const std::string& request, bool isWhole) {
    const Adoption adoption;
    const PipeEnds number = makePipe();
    const pid_t host = ::fork();
    if (host == 0) {
        becomeHost(request, isWhole, number.writing);
    }
    ::close(number.writing);
    pid_t worker = 0;
    EXPECT_EQ(::read(number.reading, &worker, sizeof(worker)),
              static_cast<ssize_t>(sizeof(worker)));
    ::close(number.reading);
    int status = 0;
    EXPECT_EQ(::waitpid(host, &status, 0), host);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(::waitpid(worker, &status, 0), worker);
    return status;
}

TEST(KilledHost, InTheMiddleOfItsRequestLeavesNoWorker) {
    const Scene scene;
    const int status = endOfOrphan(scene.request("extractAndInspect"), false);
    // The request is turned down, but there is nobody left to tell.
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_FALSE(std::filesystem::exists(scene.work()));
}

TEST(KilledHost, InTheMiddleOfTheResultLeavesNoWorker) {
    const Scene scene({.moreClips = manyClips});
    const int status = endOfOrphan(scene.request("extractAndInspect"), true);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 2);
}

class Hosts : public TracedTest {};

TEST_F(Hosts, ReaderOfSingleBytesGetsTheWholeResult) {
    const Scene scene({.moreClips = manyClips});
    const std::string request = scene.request("inspect");
    const auto expected = runWorker({.input = request});
    const PipeEnds output = makePipe();
    ::fcntl(output.writing, F_SETPIPE_SZ, smallPipe);
    std::string read;
    std::thread reader([&] {
        char byte = 0;
        while (::read(output.reading, &byte, 1) == 1) {
            read += byte;
        }
    });
    const auto run =
        runTraced({.input = request, .places = scene.places(), .outputDescriptor = output.writing});
    ::close(output.writing);
    reader.join();
    ::close(output.reading);
    EXPECT_EQ(run.run.status, 0);
    EXPECT_GT(read.size(), std::size_t{4} * smallPipe);
    EXPECT_EQ(read, expected.output);
}

TEST_F(Hosts, RequestThatEndsHalfwayIsRejected) {
    const Scene scene;
    const std::string request = scene.request("extractAndInspect");
    for (std::size_t length = 1; length < request.size(); length += 7) {
        const auto run = runWorker({.input = request.substr(0, length)});
        EXPECT_EQ(run.status, 1) << length;
        EXPECT_EQ(run.output, "") << length;
        EXPECT_TRUE(run.errors.starts_with("trellant-omf: invalid request JSON: ")) << run.errors;
        EXPECT_EQ(run.errors.find('\n'), run.errors.size() - 1) << "one line";
    }
    EXPECT_FALSE(std::filesystem::exists(scene.work()));
}

TEST_F(Hosts, RequestThatNeverComesIsWaitedForUntilTheHostGoes) {
    const Scene scene;
    const PipeEnds input = makePipe();
    int writing = input.writing;
    const auto run = runTraced({.places = scene.places(),
                                .director =
                                    [&](const SeenCall& seen, pid_t) {
                                        if (seen.kind == CallKind::requestRead && writing >= 0) {
                                            ::close(std::exchange(writing, -1));
                                        }
                                        return Intervention{};
                                    },
                                .inputDescriptor = input.reading});
    ::close(input.reading);
    EXPECT_EQ(run.run.errors, logLineText("empty request on stdin"));
    EXPECT_EQ(run.run.output, "");
    EXPECT_EQ(run.run.status, 1);
}

}  // namespace

}  // namespace trellant::testing
