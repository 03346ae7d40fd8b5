// SPDX-License-Identifier: Apache-2.0
// What memory the machine and the control groups of a process have left.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace trellant {

/// Bytes that the groups named in the file `membership` (/proc/self/cgroup) can still take, of all
/// levels the fewest; pages of files, which they give back when asked, count as free. Absent where
/// no group has a limit or none can be found. `root`: where the groups are mounted
/// (/sys/fs/cgroup), in either version of their interface.
[[nodiscard]] std::optional<std::uint64_t> controlGroupRoom(const std::string& membership,
                                                            const std::string& root);

/// Bytes that the machine can give without ending anybody, and of swap, as the file `statistics`
/// (/proc/meminfo) says. Absent where it does not.
[[nodiscard]] std::optional<std::uint64_t> machineRoom(const std::string& statistics);

}  // namespace trellant
