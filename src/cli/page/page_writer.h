// SPDX-License-Identifier: Apache-2.0
// One file read, and its page written.
#pragma once

#include "page.h"

#include <trellant/check/profile.h>
#include <trellant/page/page.h>

#include <string>

namespace trellant::cli {

struct PageOutcome {
    ExitStatus status = ExitStatus::done;
    /// For the index.
    page::IndexEntry entry{};
};

/// Reads `file` and writes its page to `path` ("-": standard output). What goes wrong is said on
/// the console. Throws as runPage does.
[[nodiscard]] PageOutcome writePageOf(const std::string& file, const std::string& path,
                                      const PageCall& call, const check::Profile& profile,
                                      Console& console, const StopToken& stop);

}  // namespace trellant::cli
