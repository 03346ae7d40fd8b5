// SPDX-License-Identifier: Apache-2.0
// Dumps a file of given bytes, and gathers what it says.
#pragma once

#include "dump/dump.h"
#include "dump/dump_contents.h"
#include "said.h"

#include <trellant/io/byte_readers.h>

#include <functional>
#include <string>

namespace trellant::testing {

/// `options.file` is filled in; what is said calls the file "mix.omf".
[[nodiscard]] Said dumped(ByteView file, cli::DumpOptions options = {},
                          const Setting& setting = {});

/// Reads a file of these bytes as far as it makes sense, and lets `look` see that.
void withContents(ByteView file, const std::function<void(const cli::DumpContents&)>& look);

}  // namespace trellant::testing
