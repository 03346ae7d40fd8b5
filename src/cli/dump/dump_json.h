// SPDX-License-Identifier: Apache-2.0
// A container for programs: one JSON object a line.
#pragma once

#include "dump_contents.h"
#include "dump_output.h"
#include "dump_path.h"

#include <optional>
#include <string>

namespace trellant::cli {

/// What the container is and holds, and every thing that is wrong with it. `all` as in
/// dumpOverview.
void dumpOverviewJson(const DumpContents& contents, bool all, DumpOutput& output);

/// One object with its properties; `path`: the steps that led to it. `all` as in dumpObject.
void dumpObjectJson(const DumpContents& contents, std::uint32_t object,
                    const std::optional<PathResolution>& path, bool all, DumpOutput& output);

/// The items of the table of contents, a line each; without a table why there is none. `all` as in
/// dumpToc.
void dumpTocJson(const DumpContents& contents, bool all, DumpOutput& output);

}  // namespace trellant::cli
