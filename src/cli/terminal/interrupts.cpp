// SPDX-License-Identifier: Apache-2.0
#include "interrupts.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <pthread.h>
#include <thread>
#include <unistd.h>

namespace trellant::cli {

namespace {

struct Watch {
    StopSource source;
    std::atomic<int> cancellables{0};
};

/// Lives as long as the process: its thread is never joined.
Watch& watch() {
    static auto* const instance = new Watch;
    return *instance;
}

sigset_t watchedSignals() {
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        // What is ignored from the start stays so: that is how nohup works.
        struct sigaction current {};
        if (::sigaction(number, nullptr, &current) != 0 || current.sa_handler != SIG_IGN) {
            ::sigaddset(&signals, number);
        }
    }
    return signals;
}

/// What the signal would have done had nobody watched.
[[noreturn]] void endBy(int number) {
    static_cast<void>(std::signal(number, SIG_DFL));
    const sigset_t signals = watchedSignals();
    ::pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    ::kill(::getpid(), number);
    constexpr int signalled = 128;
    ::_exit(signalled + number);
}

[[noreturn]] void waitForSignals() {
    const sigset_t signals = watchedSignals();
    for (;;) {
        int number = 0;
        if (::sigwait(&signals, &number) != 0) {
            continue;
        }
        if (watch().cancellables.load() == 0 || !watch().source.request_stop()) {
            endBy(number);
        }
    }
}

}  // namespace

void watchInterrupts() {
    const sigset_t signals = watchedSignals();
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::thread(waitForSignals).detach();
}

StopToken interruptToken() {
    return watch().source.get_token();
}

Cancellable::Cancellable() noexcept {
    ++watch().cancellables;
}

Cancellable::~Cancellable() {
    --watch().cancellables;
}

}  // namespace trellant::cli
