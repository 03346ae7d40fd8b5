// SPDX-License-Identifier: Apache-2.0
// The Dictionary: the definitions that components and descriptors refer to.
#pragma once

#include "object_writer.h"

#include <trellant/aaf/definitions.h>
#include <trellant/aaf/mobs.h>

namespace trellant::aaf {

[[nodiscard]] const AUID& idOf(DataKind kind) noexcept;
[[nodiscard]] const AUID& idOf(Operation operation) noexcept;
[[nodiscard]] const AUID& idOf(ParameterKind kind) noexcept;
[[nodiscard]] const AUID& idOf(Interpolation interpolation) noexcept;
[[nodiscard]] const AUID& idOf(Container container) noexcept;

/// Stores all definitions into the object of the Header's Dictionary.
void writeDictionary(compound::CompoundFile& file, Storage storage);

}  // namespace trellant::aaf
