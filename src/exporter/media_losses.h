// SPDX-License-Identifier: Apache-2.0
// What becomes of clips whose audio could not be made into what the session needs.
#pragma once

#include <trellant/exchange/carried_part.h>
#include <trellant/exchange/export_plan.h>
#include <trellant/exporter/session_media.h>
#include <trellant/model/timeline.h>

#include <vector>

namespace trellant {

/// One loss for each clip of such a medium, by track, then by place in it. `plan` was made of
/// `timeline`.
[[nodiscard]] std::vector<exchange::ExportLoss> mediaLosses(
    const AAFTimeline& timeline, const exchange::ExportPlan& plan,
    const std::vector<SessionMediaMaker::Difference>& differences);

}  // namespace trellant
