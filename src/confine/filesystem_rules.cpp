// SPDX-License-Identifier: Apache-2.0
// What is listed as handled is forbidden everywhere but where a rule allows it. Reading is listed
// where it is known beforehand what is read: a worker's media may lie anywhere. Each generation of
// the interface ("ABI") knows more to handle, and a kernel refuses what it does not know:
//
//   1  executing, writing, removing, making each kind of file; links and moves between folders
//      are forbidden without being listed
//   2  those may be listed (not needed: listed or not, they are forbidden here)
//   3  truncating
//   4  TCP: binding and connecting
//   5  ioctl on devices
//   6  reaching abstract sockets of, and sending signals to, processes outside
//
// What an older kernel leaves open the filter of system calls closes, so that one of generation 1
// is enough.
#include "filesystem_rules.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace trellant {

namespace {

/// As the kernel takes it from generation 6 on. An older one accepts the longer form as long as
/// what it does not know is 0.
struct RulesetAttributes {
    std::uint64_t handledFileAccess;
    std::uint64_t handledNetworkAccess;
    std::uint64_t scoped;
};

// Of the kernel's own header <linux/landlock.h>, which is often older than the kernel that the
// program meets.
constexpr std::uint64_t accessTruncate = 1ULL << 14;
constexpr std::uint64_t accessDeviceIoctl = 1ULL << 15;
constexpr std::uint64_t networkBindTcp = 1ULL << 0;
constexpr std::uint64_t networkConnectTcp = 1ULL << 1;
constexpr std::uint64_t scopeAbstractSockets = 1ULL << 0;
constexpr std::uint64_t scopeSignals = 1ULL << 1;

/// A new file is created and written; one that stands in the way of the last number is removed.
constexpr std::uint64_t allowedInDirectory =
    LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_REMOVE_FILE;

constexpr std::uint64_t reading = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;

RulesetAttributes attributesFor(long generation) noexcept {
    RulesetAttributes attributes{
        .handledFileAccess = allowedInDirectory | LANDLOCK_ACCESS_FS_EXECUTE |
                             LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_MAKE_CHAR |
                             LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_SOCK |
                             LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK |
                             LANDLOCK_ACCESS_FS_MAKE_SYM,
        .handledNetworkAccess = 0,
        .scoped = 0};
    if (generation >= 3) {
        attributes.handledFileAccess |= accessTruncate;
    }
    if (generation >= 4) {
        attributes.handledNetworkAccess = networkBindTcp | networkConnectTcp;
    }
    if (generation >= 5) {
        attributes.handledFileAccess |= accessDeviceIoctl;
    }
    if (generation >= 6) {
        attributes.scoped = scopeAbstractSockets | scopeSignals;
    }
    return attributes;
}

/// Closes a descriptor, and keeps errno.
class OpenPath {
  public:
    explicit OpenPath(const std::string& path, int moreFlags = 0) noexcept
        : number_(::open(path.c_str(), O_PATH | O_CLOEXEC | moreFlags)) {}
    ~OpenPath() {
        const int reason = errno;
        ::close(number_);
        errno = reason;
    }
    OpenPath(const OpenPath&) = delete;
    OpenPath& operator=(const OpenPath&) = delete;
    OpenPath(OpenPath&&) = delete;
    OpenPath& operator=(OpenPath&&) = delete;

    [[nodiscard]] int number() const noexcept { return number_; }
    [[nodiscard]] bool isDirectory() const noexcept {
        struct stat status {};
        return ::fstat(number_, &status) == 0 && S_ISDIR(status.st_mode);
    }

  private:
    int number_;
};

/// 0 or an errno value.
int allow(int ruleset, const OpenPath& path, std::uint64_t access) noexcept {
    const landlock_path_beneath_attr rule{.allowed_access = access, .parent_fd = path.number()};
    return ::syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0) == 0
               ? 0
               : errno;
}

/// 0 or an errno value. What is not there, or lies in no file system that rules know (a pipe), gets
/// no rule: nobody will read it, or it was never in reach of the rules.
int allowNamed(int ruleset, const std::string& name, int moreFlags, std::uint64_t ofFolder,
               std::uint64_t ofFile) noexcept {
    const OpenPath path(name, moreFlags);
    if (path.number() < 0) {
        const int reason = errno;
        struct stat status {};
        return reason == ENOTDIR || ::stat(name.c_str(), &status) != 0 ? 0 : reason;
    }
    const int reason = allow(ruleset, path, path.isDirectory() ? ofFolder : ofFile);
    return reason == EBADFD ? 0 : reason;
}

/// 0 or an errno value.
int allowReading(int ruleset, const ConfinedNeeds& needs) noexcept {
    int reason = 0;
    if (needs.readablePaths) {
        for (const std::string& name : *needs.readablePaths) {
            reason = reason != 0
                         ? reason
                         : allowNamed(ruleset, name, 0, reading, LANDLOCK_ACCESS_FS_READ_FILE);
        }
    } else if (needs.listedFolders) {
        for (const std::string& name : *needs.listedFolders) {
            reason = reason != 0
                         ? reason
                         : allowNamed(ruleset, name, O_DIRECTORY, LANDLOCK_ACCESS_FS_READ_DIR, 0);
        }
    }
    return reason;
}

/// Of reading what is forbidden where no rule allows it.
std::uint64_t handledReading(const ConfinedNeeds& needs) noexcept {
    if (needs.readablePaths) {
        return reading;
    }
    return needs.listedFolders ? LANDLOCK_ACCESS_FS_READ_DIR : 0;
}

/// 0 or an errno value.
int allowNeeds(int ruleset, const ConfinedNeeds& needs) noexcept {
    if (needs.writableDirectory) {
        const OpenPath folder(*needs.writableDirectory, O_DIRECTORY);
        if (folder.number() < 0) {
            return errno;
        }
        const std::uint64_t access = allowedInDirectory | (needs.readablePaths ? reading : 0);
        if (const int reason = allow(ruleset, folder, access); reason != 0) {
            return reason;
        }
    }
    return allowReading(ruleset, needs);
}

}  // namespace

int restrictFiles(const ConfinedNeeds& needs) noexcept {
    const long generation =
        ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (generation < 0) {
        return errno;
    }
    RulesetAttributes attributes = attributesFor(generation);
    attributes.handledFileAccess |= handledReading(needs);
    const int ruleset =
        static_cast<int>(::syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0));
    if (ruleset < 0) {
        return errno;
    }
    int reason = allowNeeds(ruleset, needs);
    if (reason == 0 && ::syscall(SYS_landlock_restrict_self, ruleset, 0) != 0) {
        reason = errno;
    }
    ::close(ruleset);
    return reason;
}

}  // namespace trellant
