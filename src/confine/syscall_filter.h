// SPDX-License-Identifier: Apache-2.0
// The layer of system calls: seccomp.
#pragma once

#include <trellant/confine/confinement.h>

namespace trellant {

/// From here on the calling thread, and what it starts, has only the calls that reading a file and
/// answering take, with a directory to write in also those that create and remove a file, and those
/// that wait for streams when they are awaited, and those of Landlock when files are narrowed down
/// later; every other call fails with ENOSYS. No file is
/// opened for truncation, none for writing without that directory, and none is made that runs with
/// its owner's or group's rights. 0, or the errno value of the refusal, and then nothing has
/// changed. Needs no_new_privs.
[[nodiscard]] int restrictCalls(const ConfinedNeeds& needs) noexcept;

}  // namespace trellant
