// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <trellant_testing/killed_host.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

void check(bool isDone, const char* action) {
    if (!isDone) {
        throw std::runtime_error(std::string("cannot ") + action);
    }
}

using Ends = std::array<int, 2>;

Ends makePipe() {
    Ends ends{-1, -1};
    check(::pipe2(ends.data(), O_CLOEXEC) == 0, "make a pipe");
    return ends;
}

[[noreturn]] void becomeHost(const std::function<void(const std::function<void()>&)>& work,
                             const Ends& output, int tell) {
    if (::fork() == 0) {
        ::dup2(output[1], STDOUT_FILENO);
        ::dup2(output[1], STDERR_FILENO);
        ::close(output[0]);
        ::close(output[1]);
        work([tell] {
            const pid_t own = ::getpid();
            static_cast<void>(::write(tell, &own, sizeof(own)));
        });
        ::_exit(0);
    }
    ::close(output[1]);
    for (;;) {
        ::pause();
    }
}

}  // namespace

KilledHost::KilledHost(const std::function<void(const std::function<void()>&)>& work,
                       Reader reader) {
    // The worker of a host that is gone becomes a child of the test.
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    const Ends output = makePipe();
    const Ends number = makePipe();
    host_ = ::fork();
    if (host_ == 0) {
        becomeHost(work, output, number[1]);
    }
    ::close(output[1]);
    ::close(number[1]);
    if (reader == Reader::stays) {
        reading_ = output[0];
    } else {
        ::close(output[0]);
    }
    check(::read(number[0], &worker_, sizeof(worker_)) == ssize_t{sizeof(worker_)},
          "start the worker");
    ::close(number[0]);
}

KilledHost::~KilledHost() {
    for (const pid_t process : {host_, worker_}) {
        if (process > 0) {
            ::kill(process, SIGKILL);
            ::waitpid(process, nullptr, 0);
        }
    }
    if (reading_ >= 0) {
        ::close(reading_);
    }
    ::prctl(PR_SET_CHILD_SUBREAPER, 0);
}

void KilledHost::kill() {
    ::kill(host_, SIGKILL);
    check(::waitpid(host_, nullptr, 0) == host_, "kill the host");
    host_ = -1;
}

int KilledHost::endOfWorker() {
    constexpr int looks = 200;
    constexpr std::chrono::milliseconds rest{5};
    int status = 0;
    for (int look = 0; look < looks; ++look) {
        if (::waitpid(worker_, &status, WNOHANG) == worker_) {
            worker_ = -1;
            return status;
        }
        std::this_thread::sleep_for(rest);
    }
    throw std::runtime_error("the worker lives");
}

}  // namespace trellant::testing
