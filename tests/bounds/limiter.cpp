// SPDX-License-Identifier: Apache-2.0
// Runs a program under limits and tells what it cost. Arguments: bytes of address space, 0 for no
// limit; seconds of processor time; the list of processes of a control group to enter, empty for
// none; the program and its arguments. Descriptor 3 gets the line "STATUS SIGNAL PEAK TIME", -1
// where there is none, the peak of resident memory in KiB, the processor time in milliseconds.
//
// A program of its own since a process begins with the peak of the one that it was forked from:
// this one is small, a test that has built a large file is not.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int reportDescriptor = 3;
constexpr int cannotStart = 127;

void limit(decltype(RLIMIT_AS) resource, const char* text) {
    const rlim_t value = std::strtoull(text, nullptr, 10);
    if (value == 0) {
        return;
    }
    const rlimit both{value, value};
    if (::setrlimit(resource, &both) != 0) {
        ::_exit(cannotStart);
    }
}

void enterGroup(const char* processes) {
    if (*processes == '\0') {
        return;
    }
    const int list = ::open(processes, O_WRONLY | O_CLOEXEC);
    // Zero is the process that writes it.
    if (list < 0 || ::write(list, "0", 1) != 1) {
        ::_exit(cannotStart);
    }
    ::close(list);
}

long milliseconds(const timeval& time) {
    return time.tv_sec * 1000 + time.tv_usec / 1000;
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 5) {
        return cannotStart;
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::close(reportDescriptor);
        limit(RLIMIT_CPU, arguments[2]);
        limit(RLIMIT_AS, arguments[1]);
        enterGroup(arguments[3]);
        ::execv(arguments[4], arguments + 4);
        ::_exit(cannotStart);
    }
    // So that the reader sees the end when the program closes them.
    ::close(STDOUT_FILENO);
    int status = 0;
    rusage usage{};
    if (child < 0 || ::wait4(child, &status, 0, &usage) != child) {
        return cannotStart;
    }
    ::dprintf(reportDescriptor, "%d %d %ld %ld\n", WIFEXITED(status) ? WEXITSTATUS(status) : -1,
              WIFSIGNALED(status) ? WTERMSIG(status) : -1, usage.ru_maxrss,
              milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime));
    return 0;
}
