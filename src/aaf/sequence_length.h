// SPDX-License-Identifier: Apache-2.0
// Lengths that follow from what a sequence consists of, and the rules of its transitions.
#pragma once

#include <trellant/aaf/components.h>

#include <cstdint>
#include <vector>

namespace trellant::aaf {

/// Fillers and clips together, less the transitions. Throws AafError when that is below 0 or does
/// not fit, or when a transition does not stand between two others.
[[nodiscard]] std::int64_t lengthOf(const std::vector<Component>& components);

/// From the first marker to the end of the one that ends last; 0 without markers. Throws AafError
/// when that does not fit.
[[nodiscard]] std::int64_t extentOf(const std::vector<DescriptiveMarker>& markers);

}  // namespace trellant::aaf
