// SPDX-License-Identifier: Apache-2.0
// What `trellant list` lists: tracks, clips, audio files and losses, a row each.
#pragma once

#include "list.h"

#include <trellant/handoff/hand_off.h>

#include <memory>

namespace trellant::cli {

/// `handOff` must outlive the lists.
[[nodiscard]] std::unique_ptr<List> listOfTracks(const HandOff& handOff);
[[nodiscard]] std::unique_ptr<List> listOfClips(const HandOff& handOff);
[[nodiscard]] std::unique_ptr<List> listOfSources(const HandOff& handOff);
/// For sheets and programs; people read loss blocks.
[[nodiscard]] std::unique_ptr<List> listOfLosses(const HandOff& handOff);

}  // namespace trellant::cli
