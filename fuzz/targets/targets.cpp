// SPDX-License-Identifier: Apache-2.0
#include "targets.h"

#include "require.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace trellant::fuzzing {

const Target& targetNamed(std::string_view name) {
    const auto* const found = std::find_if(
        targets.begin(), targets.end(), [&](const Target& target) { return target.name == name; });
    require(found != targets.end(), "there is such a target");
    return *found;
}

void require(bool holds, std::string_view law) {
    if (!holds) {
        static_cast<void>(std::fprintf(stderr, "does not hold: %.*s\n",
                                       static_cast<int>(law.size()), law.data()));
        std::abort();
    }
}

}  // namespace trellant::fuzzing
