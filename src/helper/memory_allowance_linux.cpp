#include "control_groups.h"
#include "memory_allowance.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <sys/resource.h>
#include <sys/sysinfo.h>

namespace trellant {

namespace {

/// A request for a small file ends well within this much. With less, the system decides.
constexpr std::uint64_t leastAllowance = 16'777'216;

/// Of what a group has left, the system takes a part for page tables and for pages of files that
/// are not written back yet: an eighth stays for these.
constexpr std::uint64_t systemShare = 8;

std::optional<std::uint64_t> memoryOfMachine() {
    struct sysinfo system {};
    if (::sysinfo(&system) != 0) {
        return std::nullopt;
    }
    return (std::uint64_t{system.totalram} + system.totalswap) * system.mem_unit;
}

}  // namespace

void keepWithinMemory() {
    constexpr auto unlimited = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t allowance = memoryOfMachine().value_or(unlimited);
    if (const auto room = controlGroupRoom("/proc/self/cgroup", "/sys/fs/cgroup")) {
        allowance = std::min(allowance, *room - *room / systemShare);
    }
    allowance = std::max(allowance, leastAllowance);
    rlimit data{};
    if (::getrlimit(RLIMIT_DATA, &data) == 0 && allowance < data.rlim_cur) {
        data.rlim_cur = allowance;
        static_cast<void>(::setrlimit(RLIMIT_DATA, &data));
    }
}

}  // namespace trellant
