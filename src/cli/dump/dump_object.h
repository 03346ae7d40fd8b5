// SPDX-License-Identifier: Apache-2.0
// One object with its properties.
#pragma once

#include "dump_contents.h"
#include "dump_output.h"

#include <cstdint>
#include <string>

namespace trellant::cli {

/// "OMFI:MOBJ:Name", or "property 24" without a name.
[[nodiscard]] std::string propertyLabel(const DumpContents& contents, std::uint32_t property);

/// `all`: without bounds on properties and values. The object has an item.
void dumpObject(const DumpContents& contents, std::uint32_t object, bool all, DumpOutput& output);

}  // namespace trellant::cli
