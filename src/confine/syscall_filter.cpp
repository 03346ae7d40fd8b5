// SPDX-License-Identifier: Apache-2.0
// A list of what is allowed, not of what is forbidden: the process needs few calls, and one that a
// later kernel brings is then forbidden from the start. That network, programs, other processes,
// name spaces, keys, modules, rights and times of files are out of reach follows from their
// absence.
//
// What is not listed fails as on a kernel that does not have it (ENOSYS), rather than as forbidden
// (EPERM) or with the end of the process: a later C library that prefers a new call then goes back
// to the one that it replaces, which it knows to do for old kernels. For the same reason the list
// holds, beside the calls seen in use, those by which other C libraries, architectures and tools
// that watch over memory do the same work (those try an address by writing it into a pipe). The
// kernel answers calls that are allowed whatever their arguments from a table, so that reading does
// not become slower.
#include "syscall_filter.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <memory>
#include <new>
#include <seccomp.h>
#include <span>
#include <sys/stat.h>
#include <unistd.h>

namespace trellant {

namespace {

/// Calls that this architecture does not have have a number below 0 and are left out. Each costs
/// two microseconds of every start.
constexpr std::array allowedCalls{
    // Files: reading them, looking for them, writing to what is open.
    SCMP_SYS(read), SCMP_SYS(pread64), SCMP_SYS(write), SCMP_SYS(writev), SCMP_SYS(close),
    SCMP_SYS(lseek), SCMP_SYS(_llseek), SCMP_SYS(fstat), SCMP_SYS(fstat64), SCMP_SYS(stat),
    SCMP_SYS(stat64), SCMP_SYS(lstat), SCMP_SYS(lstat64), SCMP_SYS(newfstatat), SCMP_SYS(fstatat64),
    SCMP_SYS(statx), SCMP_SYS(getdents64), SCMP_SYS(readlink), SCMP_SYS(readlinkat),
    SCMP_SYS(getcwd),
    // Memory.
    SCMP_SYS(brk), SCMP_SYS(mmap), SCMP_SYS(mmap2), SCMP_SYS(munmap), SCMP_SYS(mremap),
    SCMP_SYS(mprotect), SCMP_SYS(madvise),
    // Locks, clocks and chance, as the libraries of the language use them.
    SCMP_SYS(futex), SCMP_SYS(sched_yield), SCMP_SYS(clock_gettime), SCMP_SYS(getrandom),
    SCMP_SYS(getpid), SCMP_SYS(getppid), SCMP_SYS(gettid), SCMP_SYS(pipe2),
    // Signals that arrive, going on after a stop, and the end.
    SCMP_SYS(rt_sigaction), SCMP_SYS(rt_sigprocmask), SCMP_SYS(rt_sigreturn), SCMP_SYS(sigreturn),
    SCMP_SYS(sigaltstack), SCMP_SYS(restart_syscall), SCMP_SYS(exit), SCMP_SYS(exit_group)};

constexpr std::array waitingCalls{SCMP_SYS(poll), SCMP_SYS(ppoll)};
constexpr std::array writingCalls{SCMP_SYS(copy_file_range), SCMP_SYS(unlink), SCMP_SYS(unlinkat)};

/// Rules of files that are entered later; whatever they say, they only take away.
constexpr std::array narrowingCalls{SCMP_SYS(landlock_create_ruleset), SCMP_SYS(landlock_add_rule),
                                    SCMP_SYS(landlock_restrict_self)};

/// Room for what will be written, which leaves a file's length and content alone.
constexpr std::uint64_t roomOnly = FALLOC_FL_KEEP_SIZE;
constexpr std::uint64_t truncatingFlags = O_TRUNC;
constexpr std::uint64_t changingFlags = O_ACCMODE | O_CREAT | O_TRUNC;
/// Of a new file: a program that runs as its owner or group, whoever starts it.
constexpr std::uint64_t privilegedModes = S_ISUID | S_ISGID;

struct Releaser {
    void operator()(void* filter) const noexcept { ::seccomp_release(filter); }
};

/// A filter in the making; remembers the first refusal.
class Filter {
  public:
    Filter() noexcept : rules_(::seccomp_init(SCMP_ACT_ERRNO(static_cast<unsigned>(ENOSYS)))) {
        if (rules_ == nullptr) {
            reason_ = ENOMEM;
            return;
        }
        note(::seccomp_attr_set(rules_.get(), SCMP_FLTATR_API_SYSRAWRC, 1));
        // Some kernels slow a filtered process down lest it spies on itself; it runs no code but
        // its own. One that does not know the wish refuses it, which is no loss.
        static_cast<void>(::seccomp_attr_set(rules_.get(), SCMP_FLTATR_CTL_SSB, 1));
        // A tree of rules instead of a list: the kernel runs the filter once for each call that
        // exists when it takes it over, which is half of what the filter costs.
        constexpr std::uint32_t binaryTree = 2;
        static_cast<void>(::seccomp_attr_set(rules_.get(), SCMP_FLTATR_CTL_OPTIMIZE, binaryTree));
    }

    void allow(std::span<const int> calls) noexcept {
        for (const int call : calls) {
            add(call, {});
        }
    }
    /// When all bits of `mask` in the argument of this position are those of `value`.
    void allowIf(int call, unsigned position, std::uint64_t mask, std::uint64_t value) noexcept {
        const std::array<scmp_arg_cmp, 1> condition{
            {{.arg = position, .op = SCMP_CMP_MASKED_EQ, .datum_a = mask, .datum_b = value}}};
        add(call, condition);
    }

    /// When the argument of this position has none of `flags`, and the next, the mode that a new
    /// file gets, none of `modes`.
    void allowOpening(int call, unsigned position, std::uint64_t flags,
                      std::uint64_t modes) noexcept {
        const std::array<scmp_arg_cmp, 2> conditions{
            {{.arg = position, .op = SCMP_CMP_MASKED_EQ, .datum_a = flags, .datum_b = 0},
             {.arg = position + 1, .op = SCMP_CMP_MASKED_EQ, .datum_a = modes, .datum_b = 0}}};
        add(call, conditions);
    }

    /// 0, or the errno value of the first refusal.
    [[nodiscard]] int load() noexcept {
        if (reason_ == 0) {
            note(::seccomp_load(rules_.get()));
        }
        return reason_;
    }

  private:
    void add(int call, std::span<const scmp_arg_cmp> conditions) noexcept {
        if (reason_ == 0) {
            note(::seccomp_rule_add_array(rules_.get(), SCMP_ACT_ALLOW, call,
                                          static_cast<unsigned>(conditions.size()),
                                          conditions.data()));
        }
    }
    void note(int outcome) noexcept {
        if (outcome < 0 && reason_ == 0) {
            reason_ = -outcome;
        }
    }

    std::unique_ptr<void, Releaser> rules_;
    int reason_ = 0;
};

/// The library that lays the rules out does not survive an allocation that fails (2.5.4: it goes
/// round for ever, or frees twice), so what it takes must be there beforehand: the allocator keeps
/// what is given back to it here.
bool hasMemoryForRules() noexcept {
    constexpr std::size_t enough = 122'880;
    // Volatile, or a compiler may see that nothing is done with it and leave it out.
    auto* volatile memory = new (std::nothrow) std::byte[enough];
    const bool isThere = memory != nullptr;
    delete[] memory;
    return isThere;
}

}  // namespace

int restrictCalls(const ConfinedNeeds& needs) noexcept {
    if (!hasMemoryForRules()) {
        return ENOMEM;
    }
    Filter filter;
    filter.allow(allowedCalls);
    if (needs.awaitsStreams) {
        filter.allow(waitingCalls);
    }
    if (needs.narrowsLater) {
        filter.allow(narrowingCalls);
    }
    constexpr std::uint64_t wholeNumber = 0xFFFF'FFFF;
    const bool mayWrite = needs.writableDirectory.has_value();
    if (mayWrite) {
        filter.allow(writingCalls);
        filter.allowIf(SCMP_SYS(fallocate), 1, wholeNumber, roomOnly);
    }
    if (mayWrite) {
        // The C library gives a mode of 0 where no file is made.
        filter.allowOpening(SCMP_SYS(open), 1, truncatingFlags, privilegedModes);
        filter.allowOpening(SCMP_SYS(openat), 2, truncatingFlags, privilegedModes);
    } else {
        filter.allowIf(SCMP_SYS(open), 1, changingFlags, 0);
        filter.allowIf(SCMP_SYS(openat), 2, changingFlags, 0);
    }
    // Of what can be asked of a descriptor the first four commands (F_DUPFD, F_GETFD, F_SETFD,
    // F_GETFL); among the rest are some that have the kernel send signals to any process of the
    // user. One condition for all of them: each costs time at every start.
    static_assert(F_DUPFD == 0 && F_GETFD == 1 && F_SETFD == 2 && F_GETFL == 3);
    constexpr std::uint64_t beyondFirstFour = wholeNumber & ~std::uint64_t{3};
    filter.allowIf(SCMP_SYS(fcntl), 1, beyondFirstFour, 0);
    filter.allowIf(SCMP_SYS(fcntl64), 1, beyondFirstFour, 0);
    // A broken precondition stops the process by a signal to itself.
    filter.allowIf(SCMP_SYS(tgkill), 0, wholeNumber, static_cast<std::uint32_t>(::getpid()));
    return filter.load();
}

}  // namespace trellant
