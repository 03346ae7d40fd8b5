// SPDX-License-Identifier: Apache-2.0
// A tree as a compound file, from the first byte to the last.
#pragma once

#include "tree.h"

namespace trellant::compound {

/// As CompoundFile::write has it.
void writeTree(const Tree& tree, const ByteSink& sink);

}  // namespace trellant::compound
