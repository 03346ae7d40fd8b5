// SPDX-License-Identifier: Apache-2.0
// What runs in handlers of signals here calls nothing but the system.
#include <trellant/base/host_watch.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/types.h>
#include <unistd.h>

#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace trellant {

namespace {

/// The parent at the start; 0 as long as nobody watches.
std::atomic<pid_t> host{0};
std::atomic<int> statusAtEnd{0};
std::atomic<const char*> unfinishedFile{nullptr};

/// Whether nobody is left at the other end of one of the streams, or comes to be so within the
/// time.
bool isUnheard(int milliseconds) noexcept {
    std::array<pollfd, 2> streams{pollfd{.fd = STDOUT_FILENO, .events = 0, .revents = 0},
                                  pollfd{.fd = STDERR_FILENO, .events = 0, .revents = 0}};
    if (::poll(streams.data(), streams.size(), milliseconds) <= 0) {
        return false;
    }
    constexpr int nobodyThere = POLLERR | POLLHUP;
    return ((streams[0].revents | streams[1].revents) & nobodyThere) != 0;
}

void removeUnfinishedFile() noexcept {
    if (const char* const path = unfinishedFile.load(); path != nullptr) {
        ::unlink(path);
    }
}

[[noreturn]] void endUnfinished() noexcept {
    removeUnfinishedFile();
    ::_exit(statusAtEnd.load());
}

#ifdef __linux__
/// Of a host that was killed, one thread may end, which sends the signal, before the last one has
/// closed the pipes.
constexpr int closingMilliseconds = 500;

extern "C" void onEndOfAParentsThread(int /*signal*/) {
    const int before = errno;
    if (::getppid() != host.load() && isUnheard(closingMilliseconds)) {
        endUnfinished();
    }
    errno = before;
}

void askForTheParentsEnd() noexcept {
    constexpr int notice = SIGUSR1;
    struct sigaction action {};
    action.sa_handler = onEndOfAParentsThread;
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(notice, &action, nullptr);
    sigset_t wanted;
    ::sigemptyset(&wanted);
    ::sigaddset(&wanted, notice);
    ::pthread_sigmask(SIG_UNBLOCK, &wanted, nullptr);
    ::prctl(PR_SET_PDEATHSIG, notice);
    // A parent that ended before this was set sends nothing any more.
    if (::getppid() != host.load()) {
        onEndOfAParentsThread(notice);
    }
}
#endif

extern "C" void endBySignal(int signal) {
    removeUnfinishedFile();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

}  // namespace

void watchHost(int status) noexcept {
    statusAtEnd = status;
    host = ::getppid();
#ifdef __linux__
    askForTheParentsEnd();
#endif
}

void endIfHostIsGone() noexcept {
    const pid_t watched = host.load();
    if (watched != 0 && isUnheard(0) && ::getppid() != watched) {
        endUnfinished();
    }
}

EndPutOff::EndPutOff() noexcept {
    sigset_t ending;
    ::sigemptyset(&ending);
    for (const int signal : {SIGUSR1, SIGHUP, SIGINT, SIGTERM}) {
        ::sigaddset(&ending, signal);
    }
    ::pthread_sigmask(SIG_BLOCK, &ending, &before_);
}

EndPutOff::~EndPutOff() {
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

UnfinishedFile::UnfinishedFile(const char* path) noexcept {
    unfinishedFile = path;
}

UnfinishedFile::~UnfinishedFile() {
    unfinishedFile = nullptr;
}

void removeUnfinishedFileOnSignals() noexcept {
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        struct sigaction present {};
        if (::sigaction(signal, nullptr, &present) == 0 && present.sa_handler != SIG_IGN) {
            static_cast<void>(std::signal(signal, endBySignal));
        }
    }
}

}  // namespace trellant
