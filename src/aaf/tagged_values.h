// SPDX-License-Identifier: Apache-2.0
// Values by name as stored objects.
#pragma once

#include "object_writer.h"

#include <trellant/aaf/components.h>

#include <vector>

namespace trellant::aaf {

/// Adds a property of such objects to `object`; none for no values.
void writeTaggedValues(compound::CompoundFile& file, ObjectWriter& object, Property property,
                       const std::vector<TaggedValue>& values);

}  // namespace trellant::aaf
