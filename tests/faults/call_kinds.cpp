// SPDX-License-Identifier: Apache-2.0
#include "call_kinds.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <string_view>
#include <sys/syscall.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

constexpr std::array<const char*, static_cast<std::size_t>(CallKind::unknown) + 1> names{
    "startup",     "memory",     "signals",     "streamCheck", "memoryLook",     "memoryRead",
    "requestRead", "lineWrite",  "resultWrite", "confinement", "folderCreation", "folderLook",
    "sourceOpen",  "sourceLook", "sourceRead",  "nameLook",    "fileCreation",   "kernelCopy",
    "fileWrite",   "probeOpen",  "probeLook",   "probeRead",   "mediaLook",      "searchOpen",
    "searchLook",  "searchRead", "closing",     "infallible",  "unknown"};

/// Where a call has its path; absent for calls that name none.
std::optional<std::size_t> pathArgument(std::uint64_t number) {
    switch (number) {
        case SYS_openat:
        case SYS_newfstatat:
        case SYS_mkdirat:
        case SYS_unlinkat:
            return 1;
#ifdef SYS_open
        case SYS_open:
        case SYS_stat:
        case SYS_lstat:
        case SYS_mkdir:
        case SYS_unlink:
            return 0;
#endif
        default:
            return std::nullopt;
    }
}

bool beginsWithDescriptor(std::uint64_t number) {
    switch (number) {
        case SYS_read:
        case SYS_write:
        case SYS_pread64:
        case SYS_fcntl:
        case SYS_fstat:
        case SYS_getdents64:
        case SYS_close:
        case SYS_copy_file_range:
        case SYS_fallocate:
            return true;
        default:
            return false;
    }
}

/// What needs no look at the arguments.
std::optional<CallKind> plainKind(std::uint64_t number) {
    switch (number) {
        case SYS_brk:
        case SYS_mmap:
        case SYS_munmap:
        case SYS_mremap:
        case SYS_mprotect:
        case SYS_madvise:
        case SYS_getrandom:
            return CallKind::memory;
        case SYS_rt_sigaction:
        case SYS_rt_sigprocmask:
            return CallKind::signals;
        case SYS_prctl:
        case SYS_prlimit64:
        case SYS_setrlimit:
        case SYS_seccomp:
        case SYS_landlock_create_ruleset:
        case SYS_landlock_add_rule:
        case SYS_landlock_restrict_self:
            return CallKind::confinement;
        case SYS_copy_file_range:
        case SYS_fallocate:
            return CallKind::kernelCopy;
        case SYS_getdents64:
            return CallKind::searchRead;
        case SYS_close:
            return CallKind::closing;
        case SYS_sysinfo:
            return CallKind::memoryLook;
        case SYS_exit_group:
        case SYS_getpid:
        case SYS_getppid:
        case SYS_gettid:
            return CallKind::infallible;
        default:
            return std::nullopt;
    }
}

}  // namespace

const char* nameOf(CallKind kind) {
    return names.at(static_cast<std::size_t>(kind));
}

SeenCall CallReader::see(const SystemCall& call, const Tracee& process) {
    SeenCall seen{.index = count_++, .call = call};
    if (const auto argument = pathArgument(call.number)) {
        seen.path = process.textAt(call.arguments.at(*argument)).value_or("");
    }
    const bool namesNothing = seen.path.empty();
    if (const auto known = opened_.find(call.arguments[0]);
        known != opened_.end() && namesNothing &&
        (beginsWithDescriptor(call.number) || pathArgument(call.number) == 1)) {
        seen.path = known->second.path;
    }
    seen.kind = kindOf(call, seen.path);
    // The program's own code begins with a word on writing to nobody.
    if (call.number == SYS_rt_sigaction && call.arguments[0] == SIGPIPE) {
        hasBegun_ = true;
    }
    if (!hasBegun_) {
        seen.kind = CallKind::startup;
        opening_.reset();
    }
    seen.ordinal = ordinals_[seen.kind]++;
    seen.isWithinCopy = isWithinCopy_;
    seen.isAfterResult = isAfterResult_;
    isWithinCopy_ =
        seen.kind == CallKind::fileCreation || (isWithinCopy_ && seen.kind != CallKind::closing);
    isAfterResult_ = isAfterResult_ || seen.kind == CallKind::resultWrite;
    if (call.number == SYS_close) {
        opened_.erase(call.arguments[0]);
    }
    return seen;
}

void CallReader::returned(std::int64_t result) {
    if (opening_ && result >= 0) {
        opened_[static_cast<std::uint64_t>(result)] = *opening_;
        sourceWasOpened_ = sourceWasOpened_ || opening_->role == Role::source;
    }
    opening_.reset();
}

CallKind CallReader::kindOf(const SystemCall& call, const std::string& path) {
    if (const auto plain = plainKind(call.number)) {
        return *plain;
    }
    const auto& arguments = call.arguments;
    switch (call.number) {
        case SYS_openat:
            return openingKind(path, arguments[2]);
        case SYS_read:
            return arguments[0] == STDIN_FILENO           ? CallKind::requestRead
                   : isOpenAs(arguments[0], Role::memory) ? CallKind::memoryRead
                                                          : CallKind::unknown;
        case SYS_write:
            return arguments[0] == STDERR_FILENO   ? CallKind::lineWrite
                   : arguments[0] == STDOUT_FILENO ? CallKind::resultWrite
                                                   : CallKind::fileWrite;
        case SYS_pread64:
            return descriptorKind(arguments[0], CallKind::sourceRead, CallKind::unknown,
                                  CallKind::probeRead);
        case SYS_fcntl:
            return arguments[0] <= STDERR_FILENO ? CallKind::streamCheck : CallKind::searchLook;
        case SYS_fstat:
            return descriptorKind(arguments[0], CallKind::sourceLook, CallKind::searchLook,
                                  CallKind::probeLook);
        case SYS_newfstatat:
            if ((arguments[3] & AT_EMPTY_PATH) != 0) {
                return descriptorKind(arguments[0], CallKind::sourceLook, CallKind::searchLook,
                                      CallKind::probeLook);
            }
            return lookKind(path, arguments[3]);
        case SYS_readlinkat:
#ifdef SYS_readlink
        case SYS_readlink:
#endif
            return CallKind::mediaLook;
        case SYS_mkdirat:
            return CallKind::folderCreation;
#ifdef SYS_mkdir
        case SYS_mkdir:
            return CallKind::folderCreation;
#endif
        default:
            return CallKind::unknown;
    }
}

CallKind CallReader::openingKind(const std::string& path, std::uint64_t flags) {
    if ((flags & O_PATH) != 0) {
        opening_ = Opened{Role::rule, path};
        return CallKind::confinement;
    }
    if ((flags & O_CREAT) != 0) {
        opening_ = Opened{Role::audio, path};
        return CallKind::fileCreation;
    }
    if ((flags & O_DIRECTORY) != 0) {
        opening_ = Opened{Role::folder, path};
        return CallKind::searchOpen;
    }
    if (path == "/proc/self/cgroup" || path == "/proc/meminfo" ||
        path.starts_with("/sys/fs/cgroup/")) {
        opening_ = Opened{Role::memory, path};
        return CallKind::memoryLook;
    }
    if (path == places_.source) {
        opening_ = Opened{Role::source, path};
        return CallKind::sourceOpen;
    }
    opening_ = Opened{Role::audio, path};
    return CallKind::probeOpen;
}

CallKind CallReader::lookKind(const std::string& path, std::uint64_t flags) const {
    if ((flags & AT_SYMLINK_NOFOLLOW) != 0) {
        return CallKind::nameLook;
    }
    if (std::string_view(places_.work).starts_with(path)) {
        return sourceWasOpened_ ? CallKind::searchLook : CallKind::folderLook;
    }
    return CallKind::mediaLook;
}

bool CallReader::isOpenAs(std::uint64_t descriptor, Role role) const {
    const auto known = opened_.find(descriptor);
    return known != opened_.end() && known->second.role == role;
}

CallKind CallReader::descriptorKind(std::uint64_t descriptor, CallKind ofSource, CallKind ofFolder,
                                    CallKind ofAudio) const {
    const auto known = opened_.find(descriptor);
    if (known == opened_.end()) {
        return CallKind::unknown;
    }
    switch (known->second.role) {
        case Role::source:
            return ofSource;
        case Role::folder:
            return ofFolder;
        case Role::audio:
            return ofAudio;
        case Role::rule:
            return CallKind::confinement;
        case Role::memory:
            break;
    }
    return CallKind::unknown;
}

}  // namespace trellant::testing
