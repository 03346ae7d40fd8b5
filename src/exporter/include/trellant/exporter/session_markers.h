// SPDX-License-Identifier: Apache-2.0
// Losses as marks on the timeline of a session.
#pragma once

#include <trellant/exchange/carried_part.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/sessions/session.h>

#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// One for each loss, of reading and of the export, by ascending place; at the start for a loss
/// without one. `plan` was
/// made of the hand-off's timeline.
[[nodiscard]] std::vector<sessions::SessionMarker> lossMarkers(
    const HandOff& handOff, const std::vector<exchange::ExportLoss>& losses,
    const exchange::ExportPlan& plan);

}  // namespace trellant
