// SPDX-License-Identifier: Apache-2.0
#include "effect_losses.h"

namespace trellant::check {

bool isOfEffect(const PlacedLoss& loss) noexcept {
    return loss.kind == LossKind::effectNotRendered || loss.kind == LossKind::effectUnnamed ||
           loss.kind == LossKind::effectWithoutInput;
}

}  // namespace trellant::check
