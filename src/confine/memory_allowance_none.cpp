// SPDX-License-Identifier: Apache-2.0
#include <trellant/confine/memory_allowance.h>

namespace trellant {

void keepWithinMemory() {}

}  // namespace trellant
