// SPDX-License-Identifier: Apache-2.0
#include <trellant/confine/memory_allowance.h>

namespace trellant {

void keepWithinMemory() {}

bool limitMemory(std::uint64_t /*bytes*/) {
    return false;
}

}  // namespace trellant
