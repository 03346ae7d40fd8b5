// SPDX-License-Identifier: Apache-2.0
// What a request reaches in the file system, made all that the process can reach.
#pragma once

#include "omf_reader.h"

namespace trellant {

/// Confines the process, as TRELLANT_SANDBOX says, to what a request reaches: at first it reads any
/// file, since media lie where the input says, but lists no folder beside the searched one; as soon
/// as the files are known it reads these and what it has written. To be given to
/// OMFReader::process. Throws ConfinementError.
void confineTo(const OMFReader::Reach& reach);

}  // namespace trellant
