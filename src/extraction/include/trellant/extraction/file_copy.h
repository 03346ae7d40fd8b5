// SPDX-License-Identifier: Apache-2.0
// Files copied as they are.
#pragma once

#include <trellant/handoff/work_progress.h>

#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// Copies the regular file at `source` to a new file at `destination`. Throws FileSystemError, and
/// AAFCancellationError after a stop; a part may be there then.
void copyFile(const std::string& source, const std::string& destination, WorkProgress& progress);

}  // namespace trellant
