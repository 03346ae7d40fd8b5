// SPDX-License-Identifier: Apache-2.0
// Clips of one track on as few lanes as it takes for no two to overlap, except in a crossfade.
#pragma once

#include <trellant/exchange/export_plan.h>

#include <string>
#include <vector>

namespace trellant::exchange {

/// Whether both are crossfades' halves: `later` begins inside `earlier`, and the one's fade-out is
/// the other's fade-in in place, length and curve. Fades of one clip do not reach into one another.
[[nodiscard]] bool isCrossfade(const PlannedClip& earlier, const PlannedClip& later);

/// `clips` by ascending start. Each goes where it crossfades, else to the first lane that is free.
/// At least one lane. Takes time in proportion to clips, up to the logarithm of lanes.
[[nodiscard]] std::vector<Lane> lanesOf(std::vector<PlannedClip> clips, const std::string& name);

}  // namespace trellant::exchange
