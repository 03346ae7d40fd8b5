// SPDX-License-Identifier: Apache-2.0
#include "memory_room.h"

#include <trellant/confine/memory_allowance.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <sys/resource.h>
#include <sys/sysinfo.h>

namespace trellant {

namespace {

/// What a process has when it starts; with less it could not even say that memory is out.
constexpr std::uint64_t leastAllowance = 1'048'576;

/// Of what a group has left, the system takes a part for page tables and for pages of files that
/// are not written back yet: an eighth stays for these.
constexpr std::uint64_t systemShare = 8;

/// Nobody needs more: then what is free beside the pages of files will do, which costs no file to
/// read.
constexpr std::uint64_t plenty = 8'589'934'592;

std::optional<std::uint64_t> memoryOfMachine() {
    struct sysinfo system {};
    if (::sysinfo(&system) != 0) {
        return std::nullopt;
    }
    const std::uint64_t free = (std::uint64_t{system.freeram} + system.freeswap) * system.mem_unit;
    return free >= plenty ? free : machineRoom("/proc/meminfo");
}

}  // namespace

void keepWithinMemory() {
    constexpr auto unlimited = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t allowance = memoryOfMachine().value_or(unlimited);
    if (const auto room = controlGroupRoom("/proc/self/cgroup", "/sys/fs/cgroup")) {
        allowance = std::min(allowance, *room - *room / systemShare);
    }
    static_cast<void>(limitMemory(allowance));
}

bool limitMemory(std::uint64_t bytes) {
    const std::uint64_t allowance = std::max(bytes, leastAllowance);
    rlimit data{};
    if (::getrlimit(RLIMIT_DATA, &data) != 0 || allowance >= data.rlim_cur) {
        return false;
    }
    data.rlim_cur = allowance;
    return ::setrlimit(RLIMIT_DATA, &data) == 0;
}

}  // namespace trellant
