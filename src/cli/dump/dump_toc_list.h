// SPDX-License-Identifier: Apache-2.0
// The table of contents as a list.
#pragma once

#include "dump_contents.h"
#include "dump_output.h"

namespace trellant::cli {

/// Items that are listed unless all are wanted.
inline constexpr std::size_t mostTocItems = 10'000;

/// The items of the table of contents, one a line, as they are read. `all`: without a bound.
void dumpToc(const DumpContents& contents, bool all, DumpOutput& output);

}  // namespace trellant::cli
