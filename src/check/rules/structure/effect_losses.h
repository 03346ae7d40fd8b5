// SPDX-License-Identifier: Apache-2.0
// Losses by which rule tells them.
#pragma once

#include <trellant/handoff/hand_off.h>

namespace trellant::check {

/// Whether an effect that is not known, or has nothing to work on, is what was lost: told by the
/// rule "effects" alone.
[[nodiscard]] bool isOfEffect(const PlacedLoss& loss) noexcept;

}  // namespace trellant::check
