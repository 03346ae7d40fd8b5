// SPDX-License-Identifier: Apache-2.0
// What `trellant list` lists: tracks, clips, audio files and losses, a row each.
#pragma once

#include "listing.h"

#include <trellant/handoff/hand_off.h>
namespace trellant::cli {

[[nodiscard]] Listing listTracks(const HandOff& handOff);
[[nodiscard]] Listing listClips(const HandOff& handOff);
[[nodiscard]] Listing listSources(const HandOff& handOff);
/// For sheets and programs; people read loss blocks.
[[nodiscard]] Listing listLosses(const HandOff& handOff);

}  // namespace trellant::cli
