// SPDX-License-Identifier: Apache-2.0
// Gains, pans and fades as AAF's operations, each list the innermost first.
#pragma once

#include <trellant/aaf/components.h>
#include <trellant/exchange/export_plan.h>

#include <vector>

namespace trellant::sessions {

/// The gain inside the automation that multiplies it: readers take both from there.
[[nodiscard]] std::vector<aaf::OperationGroup> clipOperations(const exchange::PlannedClip& clip);

/// The gain inside the pan, which readers look for next to the slot. Automation of the pan stands
/// for the fixed one.
[[nodiscard]] std::vector<aaf::OperationGroup> trackOperations(const exchange::PlannedTrack& track);

/// From the outgoing segment to the incoming one; for a fade one of them is a filler.
[[nodiscard]] aaf::OperationGroup dissolve(const AAFAutomationInterpolation& curve);

}  // namespace trellant::sessions
