// SPDX-License-Identifier: Apache-2.0
// Losses for people: a short paragraph each, since sentences do not fit into columns.
#pragma once

#include <trellant/handoff/hand_off.h>

#include <cstddef>
#include <string>

namespace trellant::cli {

/// Where it lies and what became of it, what that means, what the mapper said, its place in the
/// file. Lines of `columns` cells at most; Console::unlimitedColumns: nothing is wrapped.
[[nodiscard]] std::string lossBlocks(const HandOff& handOff, std::size_t columns, bool colour);

}  // namespace trellant::cli
