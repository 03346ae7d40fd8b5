// SPDX-License-Identifier: Apache-2.0
// What a container is, what it holds, and where it stops making sense.
#pragma once

#include "dump_contents.h"
#include "dump_output.h"

#include <string>
#include <vector>

namespace trellant::cli {

/// Every thing that is wrong with the container, in the order in which a reader meets it.
[[nodiscard]] std::vector<std::string> damagesOf(const DumpContents& contents);

/// `all`: without bounds on classes and objects.
void dumpOverview(const DumpContents& contents, bool all, DumpOutput& output);

}  // namespace trellant::cli
