// SPDX-License-Identifier: Apache-2.0
// Each thing that the layer of system calls takes away or leaves, tried by a child that has entered
// this layer alone.
#include "syscall_filter.h"

#include "confined_child.h"
#include "folder_test.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <trellant_testing/byte_writer.h>
#include <unistd.h>
#include <vector>

namespace trellant::testing {

namespace {

int enterFilter(bool mayWrite) {
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    return restrictCalls(
        {.writableDirectory = mayWrite ? std::optional<std::string>("/") : std::nullopt});
}

std::string triedReading(const std::function<long()>& attempt) {
    return reportFromChild([] { return enterFilter(false); }, [&] { return outcome(attempt()); });
}

std::string triedWriting(const std::function<long()>& attempt) {
    return reportFromChild([] { return enterFilter(true); }, [&] { return outcome(attempt()); });
}

struct NamedCall {
    std::string_view name;
    long number;
};

/// Tries each with arguments that no kernel accepts, so that nothing happens where one gets
/// through.
void expectAbsent(const std::vector<NamedCall>& calls) {
    constexpr long nonsense = -1;
    for (const NamedCall& call : calls) {
        SCOPED_TRACE(call.name);
        const auto attempt = [&] {
            return ::syscall(call.number, nonsense, nonsense, nonsense, nonsense, nonsense,
                             nonsense);
        };
        const auto free = reportFromChild([] { return 0; }, [&] { return outcome(attempt()); });
        if (free == "ENOSYS") {
            continue;  // A kernel built without it: nothing to take away.
        }
        EXPECT_NE(free, "works");
        EXPECT_EQ(triedReading(attempt), "ENOSYS");
        EXPECT_EQ(triedWriting(attempt), "ENOSYS");
    }
}

class SyscallFilter : public FolderTest {};

TEST_F(SyscallFilter, NetworkIsAbsent) {
    expectAbsent({{"socket", SYS_socket},
                  {"socketpair", SYS_socketpair},
                  {"bind", SYS_bind},
                  {"connect", SYS_connect},
                  {"listen", SYS_listen},
                  {"accept4", SYS_accept4},
                  {"sendto", SYS_sendto},
                  {"sendmsg", SYS_sendmsg},
                  {"recvmsg", SYS_recvmsg}});
}

TEST_F(SyscallFilter, ProgramsAndProcessesAreAbsent) {
    expectAbsent({{"execve", SYS_execve},
                  {"execveat", SYS_execveat},
                  {"clone", SYS_clone},
                  {"clone3", SYS_clone3},
                  {"memfd_create", SYS_memfd_create}});
    EXPECT_EQ(triedReading([] { return ::execl("/bin/true", "true", nullptr); }), "ENOSYS");
    EXPECT_EQ(triedWriting([] { return ::fork(); }), "ENOSYS");
}

TEST_F(SyscallFilter, OtherProcessesAreOutOfReach) {
    expectAbsent({{"ptrace", SYS_ptrace},
                  {"process_vm_readv", SYS_process_vm_readv},
                  {"process_vm_writev", SYS_process_vm_writev},
                  {"pidfd_open", SYS_pidfd_open},
                  {"pidfd_getfd", SYS_pidfd_getfd},
                  {"pidfd_send_signal", SYS_pidfd_send_signal},
                  {"kcmp", SYS_kcmp},
                  {"prlimit64", SYS_prlimit64},
                  {"setpriority", SYS_setpriority}});
    EXPECT_EQ(triedReading([] { return ::kill(::getppid(), 0); }), "ENOSYS");
    EXPECT_EQ(triedReading([] { return ::syscall(SYS_tgkill, ::getppid(), ::getppid(), 0); }),
              "ENOSYS");
}

TEST_F(SyscallFilter, DescriptorsCannotBeMadeToSendSignals) {
    for (const int command : {F_SETFL, F_SETOWN, F_SETSIG, F_SETLEASE, F_NOTIFY}) {
        SCOPED_TRACE(command);
        const auto attempt = [&] { return static_cast<long>(::fcntl(STDIN_FILENO, command, 0)); };
        EXPECT_EQ(triedReading(attempt), "ENOSYS");
        EXPECT_EQ(triedWriting(attempt), "ENOSYS");
    }
    EXPECT_EQ(triedReading([] { return static_cast<long>(::fcntl(STDIN_FILENO, F_GETFL)); }),
              "works");
}

TEST_F(SyscallFilter, SystemCannotBeChanged) {
    expectAbsent({{"mount", SYS_mount},
                  {"umount2", SYS_umount2},
                  {"pivot_root", SYS_pivot_root},
                  {"chroot", SYS_chroot},
                  {"unshare", SYS_unshare},
                  {"setns", SYS_setns},
                  {"fsopen", SYS_fsopen},
                  {"move_mount", SYS_move_mount},
                  {"init_module", SYS_init_module},
                  {"finit_module", SYS_finit_module},
                  {"delete_module", SYS_delete_module},
                  {"kexec_load", SYS_kexec_load},
                  {"reboot", SYS_reboot},
                  {"swapon", SYS_swapon},
                  {"sethostname", SYS_sethostname},
                  {"clock_settime", SYS_clock_settime}});
}

TEST_F(SyscallFilter, RareDoorsIntoTheKernelAreAbsent) {
    expectAbsent({{"bpf", SYS_bpf},
                  {"io_uring_setup", SYS_io_uring_setup},
                  {"io_uring_enter", SYS_io_uring_enter},
                  {"keyctl", SYS_keyctl},
                  {"add_key", SYS_add_key},
                  {"request_key", SYS_request_key},
                  {"perf_event_open", SYS_perf_event_open},
                  {"userfaultfd", SYS_userfaultfd},
                  {"prctl", SYS_prctl},
                  {"seccomp", SYS_seccomp},
                  {"setuid", SYS_setuid},
                  {"setgroups", SYS_setgroups},
                  {"capset", SYS_capset},
                  {"shmat", SYS_shmat},
                  {"mq_open", SYS_mq_open},
                  {"open_by_handle_at", SYS_open_by_handle_at},
                  {"ioctl", SYS_ioctl}});
}

TEST_F(SyscallFilter, FilesKeepTheirRightsTimesLengthsAndNames) {
    expectAbsent({{"fchmodat", SYS_fchmodat},
                  {"fchmod", SYS_fchmod},
                  {"fchownat", SYS_fchownat},
                  {"fchown", SYS_fchown},
                  {"setxattr", SYS_setxattr},
                  {"fsetxattr", SYS_fsetxattr},
                  {"removexattr", SYS_removexattr},
                  {"utimensat", SYS_utimensat},
                  {"truncate", SYS_truncate},
                  {"ftruncate", SYS_ftruncate},
                  {"fallocate", SYS_fallocate},
                  {"renameat2", SYS_renameat2},
                  {"linkat", SYS_linkat},
                  {"symlinkat", SYS_symlinkat},
                  {"mkdirat", SYS_mkdirat},
                  {"mknodat", SYS_mknodat},
                  {"openat2", SYS_openat2}});
}

TEST_F(SyscallFilter, FilesAreNotOpenedForTruncation) {
    const std::string file = writeFile(path("file"), bytesOf("text"));
    EXPECT_EQ(triedWriting([&] { return ::open(file.c_str(), O_WRONLY | O_TRUNC); }), "ENOSYS");
    EXPECT_EQ(triedReading([&] { return ::open(file.c_str(), O_RDONLY | O_TRUNC); }), "ENOSYS");
    EXPECT_EQ(triedWriting([&] { return ::creat(file.c_str(), 0666); }), "ENOSYS");
    EXPECT_EQ(textOfFile(file), "text");
}

TEST_F(SyscallFilter, FilesAreNotMadeToRunAsTheirOwnerOrGroup) {
    const int flags = O_WRONLY | O_CREAT | O_EXCL;
    for (const mode_t mode : {04755U, 02755U, 06777U}) {
        SCOPED_TRACE(mode);
        EXPECT_EQ(triedWriting([&] { return ::open(path("new").c_str(), flags, mode); }), "ENOSYS");
        EXPECT_EQ(triedWriting([&] {
                      return ::syscall(SYS_openat, AT_FDCWD, path("new").c_str(), flags, mode);
                  }),
                  "ENOSYS");
        EXPECT_FALSE(std::filesystem::exists(path("new")));
    }
    EXPECT_EQ(triedWriting([&] { return ::open(path("new").c_str(), flags, 0755); }), "works");
    EXPECT_TRUE(std::filesystem::exists(path("new")));
}

TEST_F(SyscallFilter, FilesAreNotOpenedForWritingWhenThatIsNotNeeded) {
    const std::string file = writeFile(path("file"), bytesOf("text"));
    EXPECT_EQ(triedReading([&] { return ::open(file.c_str(), O_WRONLY); }), "ENOSYS");
    EXPECT_EQ(triedReading([&] { return ::open(file.c_str(), O_RDWR); }), "ENOSYS");
    EXPECT_EQ(triedReading([&] { return ::open(path("new").c_str(), O_RDONLY | O_CREAT, 0666); }),
              "ENOSYS");
    EXPECT_EQ(triedReading([&] { return ::unlink(file.c_str()); }), "ENOSYS");
    EXPECT_EQ(triedReading([&] { return ::unlinkat(AT_FDCWD, file.c_str(), 0); }), "ENOSYS");
    EXPECT_EQ(everything(), std::vector<std::string>{"file"});
}

TEST_F(SyscallFilter, FilesAreCreatedCopiedAndRemovedWhenThatIsNeeded) {
    const std::string from = writeFile(path("from"), bytesOf("text"));
    const std::string removed = writeFile(path("removed"), {});
    EXPECT_EQ(triedWriting([&] {
                  const int source = ::open(from.c_str(), O_RDONLY);
                  const int target = ::open(path("to").c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666);
                  return ::copy_file_range(source, nullptr, target, nullptr, 4, 0);
              }),
              "works");
    EXPECT_EQ(triedWriting([&] { return ::unlink(removed.c_str()); }), "works");
    EXPECT_EQ(textOfFile(path("to")), "text");
    EXPECT_EQ(everything(), (std::vector<std::string>{"from", "to"}));
}

TEST_F(SyscallFilter, RoomIsMadeForAFileThatKeepsItsLength) {
    const std::string file = writeFile(path("file"), bytesOf("text"));
    const auto allocated = [&](int mode) {
        return triedWriting(
            [&] { return ::fallocate(::open(file.c_str(), O_WRONLY), mode, 0, 65'536); });
    };
    // Not every file system can.
    EXPECT_NE(allocated(FALLOC_FL_KEEP_SIZE), "ENOSYS");
    EXPECT_EQ(allocated(0), "ENOSYS");
    EXPECT_EQ(allocated(FALLOC_FL_KEEP_SIZE | FALLOC_FL_PUNCH_HOLE), "ENOSYS");
    EXPECT_EQ(
        triedReading([&] { return ::fallocate(STDOUT_FILENO, FALLOC_FL_KEEP_SIZE, 0, 65'536); }),
        "ENOSYS");
    EXPECT_EQ(textOfFile(path("file")), "text");
}

TEST_F(SyscallFilter, FilesAndFoldersAreRead) {
    const std::string file = writeFile(path("file"), bytesOf("text"));
    EXPECT_EQ(triedReading([&] {
                  struct stat status {};
                  return ::stat(file.c_str(), &status) | ::lstat(file.c_str(), &status);
              }),
              "works");
    EXPECT_EQ(reportFromChild([] { return enterFilter(false); }, [&] { return textOfFile(file); }),
              "text");
    EXPECT_EQ(triedReading([&] {
                  DIR* const stream = ::opendir(directory().c_str());
                  // NOLINTNEXTLINE(concurrency-mt-unsafe)
                  return stream != nullptr && ::readdir(stream) != nullptr ? ::closedir(stream)
                                                                           : -1;
              }),
              "works");
}

TEST_F(SyscallFilter, MemoryComesAndGoesAndItsEndIsAnException) {
    const auto use = [] {
        for (std::size_t size = 1; size <= (std::size_t{1} << 26U); size *= 2) {
            const std::string bytes(size, 'x');
            if (bytes.back() != 'x') {
                return -1L;
            }
        }
        try {
            throw std::bad_alloc();
        } catch (const std::exception&) {
            return 0L;
        }
    };
    EXPECT_EQ(triedReading(use), "works");
}

TEST_F(SyscallFilter, StopOfTheProcessByItselfIsStillThatSignal) {
    EXPECT_EQ(signalInChild(
                  [] {
                      ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
                      return enterFilter(false);
                  },
                  [] { std::abort(); }),
              SIGABRT);
}

}  // namespace

}  // namespace trellant::testing
