// SPDX-License-Identifier: Apache-2.0
#include "kept_descriptors.h"

#include <trellant/base/program_start.h>
#include <trellant/base/system_call_error.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#ifdef __APPLE__
extern char** environ;
#endif

namespace trellant {

namespace {

void check(int errorNumber) {
    if (errorNumber != 0) {
        throw SystemCallError("prepare the start", errorNumber);
    }
}

}  // namespace

ProgramStart::Actions::Actions() {
    check(::posix_spawn_file_actions_init(&value));
}

ProgramStart::Attributes::Attributes() {
    check(::posix_spawnattr_init(&value));
}

ProgramStart::ProgramStart(const ProgramStreams& streams) {
    setStreams(streams);
    setSignals();
    check(::posix_spawnattr_setpgroup(&attributes_.value, 0));
    // Files and sockets of this process are no business of another, least of all of one that reads
    // strangers' files.
    unsigned flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP;
#if defined(__APPLE__)
    flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#elif defined(TRELLANT_HAS_ADDCLOSEFROM)
    check(::posix_spawn_file_actions_addclosefrom_np(&actions_.value, STDERR_FILENO + 1));
#else
    check(closeKeptDescriptors(actions_.value));
#endif
    check(::posix_spawnattr_setflags(&attributes_.value, static_cast<short>(flags)));
}

/// Those that are handed on come first: opening "/dev/null" could take the number of one.
void ProgramStart::setStreams(const ProgramStreams& streams) {
    const std::array<std::pair<int, std::optional<int>>, 3> wanted{
        {{STDIN_FILENO, streams.input},
         {STDOUT_FILENO, streams.output},
         {STDERR_FILENO, streams.errors}}};
    for (const auto& [stream, descriptor] : wanted) {
        if (descriptor) {
            check(::posix_spawn_file_actions_adddup2(&actions_.value, *descriptor, stream));
        }
    }
    for (const auto& [stream, descriptor] : wanted) {
        if (!descriptor) {
            check(::posix_spawn_file_actions_addopen(&actions_.value, stream, "/dev/null", O_RDWR,
                                                     0));
        }
    }
}

/// What this process ignores or blocks is inherited otherwise, and a program that cannot be told of
/// a closed pipe or asked to end is in the way.
void ProgramStart::setSignals() {
    sigset_t signals;
    ::sigemptyset(&signals);
    check(::posix_spawnattr_setsigmask(&attributes_.value, &signals));
    ::sigfillset(&signals);
    ::sigdelset(&signals, SIGKILL);
    ::sigdelset(&signals, SIGSTOP);
    check(::posix_spawnattr_setsigdefault(&attributes_.value, &signals));
}

pid_t ProgramStart::start(std::vector<std::string> words) const {
    constexpr const char* action = "start the program";
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        if (word.find('\0') != std::string::npos) {
            throw SystemCallError(action, EINVAL);
        }
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    pid_t process = -1;
    const int failure = ::posix_spawn(&process, arguments.front(), &actions_.value,
                                      &attributes_.value, arguments.data(), environ);
    if (failure != 0) {
        throw SystemCallError(action, failure);
    }
    return process;
}

}  // namespace trellant
