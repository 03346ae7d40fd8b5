// SPDX-License-Identifier: Apache-2.0
// What a dump of one container writes.
#pragma once

#include "dump.h"

namespace trellant::cli {

/// Reads the container in this process and writes what `options` ask for. Returns and throws as
/// runDump does, and FileSystemError for a file that cannot be opened.
[[nodiscard]] ExitStatus dumpContainer(const DumpOptions& options, Console& console);

}  // namespace trellant::cli
