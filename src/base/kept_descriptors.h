// SPDX-License-Identifier: Apache-2.0
// Which open files a started program would inherit: for systems that cannot close all of them in
// the new process.
#pragma once

#include <spawn.h>
#include <vector>

namespace trellant {

/// The descriptors above the standard streams that stay open on exec, as they are now.
[[nodiscard]] std::vector<int> keptDescriptors();

/// Has them closed in the new process. One that another thread opens between this and the start,
/// and does not mark to be closed on exec, is missed. Gives an errno value, 0 when all went well.
[[nodiscard]] int closeKeptDescriptors(posix_spawn_file_actions_t& actions);

}  // namespace trellant
