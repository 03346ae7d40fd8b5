// SPDX-License-Identifier: Apache-2.0
// What a thousand calls leave behind in their host: nothing.
#include "client_fixture.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>

namespace trellant::testing {

namespace {

constexpr int callsAtOnce = 16;
constexpr int roundsOfEach = 7;

std::atomic<int> brokenPipes{0};

/// Counts the signals that would have ended the host.
class CountedBrokenPipes {
  public:
    CountedBrokenPipes() {
        struct sigaction counting {};
        counting.sa_handler = [](int) { ++brokenPipes; };
        ::sigaction(SIGPIPE, &counting, &before_);
        sigset_t set;
        ::sigemptyset(&set);
        ::sigaddset(&set, SIGPIPE);
        ::pthread_sigmask(SIG_UNBLOCK, &set, &mask_);
    }
    ~CountedBrokenPipes() {
        ::sigaction(SIGPIPE, &before_, nullptr);
        ::pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
    }
    CountedBrokenPipes(const CountedBrokenPipes&) = delete;
    CountedBrokenPipes& operator=(const CountedBrokenPipes&) = delete;
    CountedBrokenPipes(CountedBrokenPipes&&) = delete;
    CountedBrokenPipes& operator=(CountedBrokenPipes&&) = delete;

  private:
    struct sigaction before_ {};
    sigset_t mask_{};
};

std::vector<std::string> namesIn(const char* folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

class ClientCounting : public ClientTest {
  protected:
    using Call = void (ClientCounting::*)() const;

    void succeed() const {
        EXPECT_EQ(valueOf(client("answers").run(plainRequest())).diagnostics,
                  std::vector<std::string>{encodeRequest(plainRequest())});
    }
    void holdNobodyElsesPipes() const {
        EXPECT_EQ(valueOf(client("describes-itself").run(plainRequest())).diagnostics.at(0),
                  "descriptors 0 1 2");
    }
    void fail() const { expectFault(act({.errors = {"no\n"}, .status = 2}), NonZeroExit{2, "no"}); }
    void crash() const { expectFault(act({.signal = SIGKILL}), NonZeroExit{9, ""}); }
    void breakTheRequestsPipe() const {
        expectFault(client("dies-without-reading").run(largeRequest()),
                    LaunchFailed{"cannot write the request: Broken pipe"});
    }
    void startNothing() const {
        AAFWorkerClient lost;
        lost.helperURLProvider = [](const std::string&) { return "/nowhere/worker"; };
        expectFault(lost.run(plainRequest()),
                    LaunchFailed{"cannot start \"/nowhere/worker\": No such file or directory"});
    }
    void throwFromProgress() const {
        auto call = client("progresses-and-sleeps").run(plainRequest(), [](const Progress&) {
            throw std::runtime_error("enough");
        });
        EXPECT_EQ(outcomeOf(std::move(call)).other, "enough");
    }
    void cancelAtOnce() const {
        StopSource stop;
        auto call = client("sleeps").run(plainRequest(), {}, stop.get_token());
        stop.request_stop();
        expectCancelled(std::move(call));
    }
    void cancelFromProgress() const {
        StopSource stop;
        expectCancelled(client("progresses-and-sleeps")
                            .run(
                                plainRequest(), [&](const Progress&) { stop.request_stop(); },
                                stop.get_token()));
    }

    /// Each thread starts with another kind of call, so that all kinds meet all kinds.
    int callsOfThread(int thread) const {
        constexpr std::array<Call, 9> kinds{&ClientCounting::succeed,
                                            &ClientCounting::holdNobodyElsesPipes,
                                            &ClientCounting::fail,
                                            &ClientCounting::crash,
                                            &ClientCounting::breakTheRequestsPipe,
                                            &ClientCounting::startNothing,
                                            &ClientCounting::throwFromProgress,
                                            &ClientCounting::cancelAtOnce,
                                            &ClientCounting::cancelFromProgress};
        constexpr int count = static_cast<int>(kinds.size()) * roundsOfEach;
        for (int call = 0; call < count; ++call) {
            (this->*kinds[static_cast<std::size_t>(call + thread) % kinds.size()])();
        }
        return count;
    }
};

TEST_F(ClientCounting, AThousandCallsLeaveNoDescriptorThreadChildOrSignalBehind) {
    const CountedBrokenPipes counted;
    brokenPipes = 0;
    for (const char* behaviour : {"answers", "describes-itself", "acts", "dies-without-reading",
                                  "progresses-and-sleeps", "sleeps"}) {
        (void)workers_.executable(behaviour);
    }
    // All of them beforehand: what the library and its surroundings keep for good is there then.
    (void)callsOfThread(0);
    const auto descriptors = namesIn("/proc/self/fd");
    const auto threads = namesIn("/proc/self/task");

    std::atomic<int> calls{0};
    std::vector<std::thread> callers;
    for (int thread = 0; thread < callsAtOnce; ++thread) {
        callers.emplace_back([&, thread] { calls += callsOfThread(thread); });
    }
    for (std::thread& caller : callers) {
        caller.join();
    }

    EXPECT_GT(calls, 1'000);
    EXPECT_EQ(namesIn("/proc/self/fd"), descriptors);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
    EXPECT_EQ(brokenPipes, 0);
    // The system may take a moment to strike a thread that was joined off its list.
    EXPECT_TRUE(eventually([&] { return namesIn("/proc/self/task") == threads; }));
    for (const char* behaviour :
         {"answers", "describes-itself", "acts", "dies-without-reading", "progresses-and-sleeps"}) {
        workers_.expectGone(behaviour);
    }
}

}  // namespace

}  // namespace trellant::testing
