// SPDX-License-Identifier: Apache-2.0
// From which tapes the audio of a hand-off comes, for a plan.
#pragma once

#include <trellant/exchange/export_plan.h>
#include <trellant/handoff/hand_off.h>

#include <map>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// By the identifier of the essence; none for audio of which the hand-off does not say it.
[[nodiscard]] std::map<std::string, exchange::PlannedReel> plannedReels(const HandOff& handOff);

}  // namespace trellant
