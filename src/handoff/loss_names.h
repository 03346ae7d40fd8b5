// SPDX-License-Identifier: Apache-2.0
// What the clip of a loss is called that has no name of its own.
#pragma once

#include <trellant/handoff/hand_off.h>

namespace trellant {

/// Gives losses of clips without a name that of the master mob which the clip plays. `places` are
/// those of the losses of `handOff`, whose timeline is as the worker wrote it.
void nameLosses(HandOff& handOff, const AAFWorkerExtensions::LossPlaces& places);

}  // namespace trellant
