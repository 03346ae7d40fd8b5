// SPDX-License-Identifier: Apache-2.0
// The audio of a hand-off listened to, for the rules that ask for its sound.
#pragma once

#include "terminal/console.h"

#include <trellant/base/cancellation.h>
#include <trellant/check/sound_facts.h>
#include <trellant/handoff/hand_off.h>

#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

/// Takes the audio that is inside `file` out into a hidden folder in the system's folder for
/// temporary files, which goes afterwards, and has the confined converter read each medium that is
/// played once. What could not be read is said on the console. Absent, with the reason said, where
/// nothing could be listened to at all.
[[nodiscard]] std::optional<check::SoundFacts> heardAudio(
    const std::string& file, const std::vector<std::string>& mediaFolders, const HandOff& handOff,
    Console& console, const StopToken& stop);

}  // namespace trellant::cli
