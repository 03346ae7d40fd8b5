// SPDX-License-Identifier: Apache-2.0
// Mobs, slots and descriptors as stored objects.
#pragma once

#include "object_writer.h"

#include <trellant/aaf/mobs.h>

namespace trellant::aaf {

/// Stores a composition or a master mob. Throws AafError for what it cannot hold.
void writeMob(compound::CompoundFile& file, Storage storage, const Mob& mob);
void writeSourceMob(compound::CompoundFile& file, Storage storage, const SourceMob& mob);

}  // namespace trellant::aaf
