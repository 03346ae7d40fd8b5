// SPDX-License-Identifier: Apache-2.0
#include "tracee.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#ifdef __aarch64__
#include <elf.h>
#endif

namespace trellant::testing {

namespace {

constexpr std::size_t longestText = 4'096;
#ifdef __aarch64__
/// The first argument's register is the result's too.
constexpr std::size_t firstKeptArgument = 1;
#else
constexpr std::size_t firstKeptArgument = 0;
#endif

__ptrace_syscall_info callInfo(pid_t process) {
    __ptrace_syscall_info info{};
    // The size goes where other requests have an address.
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    auto* const size = reinterpret_cast<void*>(sizeof(info));
    if (::ptrace(PTRACE_GET_SYSCALL_INFO, process, size, &info) < 0) {
        info.op = PTRACE_SYSCALL_INFO_NONE;
    }
    return info;
}

void demand(bool done) {
    if (!done) {
        throw std::runtime_error("cannot change a system call");
    }
}

#if defined(__x86_64__)

void setRegister(pid_t process, std::size_t offset, std::uint64_t value) {
    demand(::ptrace(PTRACE_POKEUSER, process, offset, value) == 0);
}

void setCallNumber(pid_t process, std::uint64_t number) {
    setRegister(process, offsetof(user_regs_struct, orig_rax), number);
}

void setCallArgument(pid_t process, std::size_t index, std::uint64_t value) {
    constexpr std::array<std::size_t, 6> offsets{
        offsetof(user_regs_struct, rdi), offsetof(user_regs_struct, rsi),
        offsetof(user_regs_struct, rdx), offsetof(user_regs_struct, r10),
        offsetof(user_regs_struct, r8),  offsetof(user_regs_struct, r9)};
    setRegister(process, offsets.at(index), value);
}

void setCallResult(pid_t process, std::int64_t result) {
    setRegister(process, offsetof(user_regs_struct, rax), static_cast<std::uint64_t>(result));
}

#elif defined(__aarch64__)

void setCallNumber(pid_t process, std::uint64_t number) {
    int word = static_cast<int>(number);
    iovec piece{&word, sizeof(word)};
    demand(::ptrace(PTRACE_SETREGSET, process, NT_ARM_SYSTEM_CALL, &piece) == 0);
}

void setCallArgument(pid_t process, std::size_t index, std::uint64_t value) {
    user_regs_struct registers{};
    iovec piece{&registers, sizeof(registers)};
    demand(::ptrace(PTRACE_GETREGSET, process, NT_PRSTATUS, &piece) == 0);
    registers.regs[index] = value;
    demand(::ptrace(PTRACE_SETREGSET, process, NT_PRSTATUS, &piece) == 0);
}

void setCallResult(pid_t process, std::int64_t result) {
    setCallArgument(process, 0, static_cast<std::uint64_t>(result));
}

#endif

}  // namespace

std::optional<SystemCall> Tracee::callAtEntry() const {
    const auto info = callInfo(process_);
    if (info.op != PTRACE_SYSCALL_INFO_ENTRY) {
        return std::nullopt;
    }
    SystemCall call{.number = info.entry.nr};
    std::memcpy(call.arguments.data(), info.entry.args, sizeof(info.entry.args));
    return call;
}

std::optional<std::int64_t> Tracee::resultAtExit() const {
    const auto info = callInfo(process_);
    if (info.op != PTRACE_SYSCALL_INFO_EXIT) {
        return std::nullopt;
    }
    return info.exit.rval;
}

void Tracee::skipCall() const {
    // Not the number that means "no call": filters of system calls may take offence at it.
    setCallNumber(process_, SYS_getppid);
}

void Tracee::setArgument(std::size_t index, std::uint64_t value) const {
    setCallArgument(process_, index, value);
}

void Tracee::restoreArgument(std::size_t index, std::uint64_t value) const {
    if (index >= firstKeptArgument) {
        setCallArgument(process_, index, value);
    }
}

void Tracee::setResult(std::int64_t result) const {
    setCallResult(process_, result);
}

std::optional<std::string> Tracee::textAt(std::uint64_t address) const {
    std::string text;
    while (text.size() < longestText) {
        errno = 0;
        const long word = ::ptrace(PTRACE_PEEKDATA, process_, address + text.size(), nullptr);
        if (errno != 0) {
            return std::nullopt;
        }
        std::array<char, sizeof(word)> bytes{};
        std::memcpy(bytes.data(), &word, sizeof(word));
        const auto length = ::strnlen(bytes.data(), bytes.size());
        text.append(bytes.data(), length);
        if (length < bytes.size()) {
            return text;
        }
    }
    return std::nullopt;
}

}  // namespace trellant::testing
