// SPDX-License-Identifier: Apache-2.0
// Where the data of a command goes: standard output, or a file that is whole or not there.
#pragma once

#include "console.h"
#include "destination.h"

#include <string>
#include <vector>

namespace trellant::cli {

/// To be asked before the work is done: false, with the reason told, for a file that is there
/// already and may not be replaced, or that is one of `inputs`.
[[nodiscard]] bool mayDeliver(const Destination& destination,
                              const std::vector<std::string>& inputs, Console& console);

/// Writes `text`; false when that failed, which was told then. A file that is replaced stays as it
/// was until the new one is whole.
[[nodiscard]] bool deliver(const Destination& destination, const std::string& text,
                           Console& console);

}  // namespace trellant::cli
