// SPDX-License-Identifier: Apache-2.0
// The MetaDictionary: what a file says of the classes, properties and types of its objects.
#pragma once

#include "object_writer.h"

namespace trellant::aaf {

/// Stores all that model.h has into the object of the root's MetaDictionary.
void writeMetaDictionary(compound::CompoundFile& file, Storage storage);

}  // namespace trellant::aaf
