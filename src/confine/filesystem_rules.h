// SPDX-License-Identifier: Apache-2.0
// The layer of files: Landlock.
#pragma once

#include <trellant/confine/confinement.h>

namespace trellant {

/// From here on the process reads what `needs.readablePaths` names, with it what lies below and in
/// the writable directory (absent: as before, but it lists no folder beside `needs.listedFolders`
/// and those below, if that is given); creates, writes and removes regular files only in
/// `needs.writableDirectory` and below (absent: nowhere); truncates, links between folders, makes
/// any other kind of file and executes nowhere. Where the kernel knows how: no ioctl on devices, no
/// TCP, no abstract socket and no signal to others. 0, or the errno value of the refusal, and then
/// nothing has changed. Needs no_new_privs.
[[nodiscard]] int restrictFiles(const ConfinedNeeds& needs) noexcept;

}  // namespace trellant
