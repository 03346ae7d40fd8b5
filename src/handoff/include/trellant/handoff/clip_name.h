// SPDX-License-Identifier: Apache-2.0
// What a clip is called where it has no name of its own.
#pragma once

#include <trellant/handoff/hand_off.h>

#include <cstddef>
#include <map>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

struct ClipName {
    /// Null where nothing names the clip; else as long-lived as the hand-off.
    const std::string* text = nullptr;
    /// It is the name of the master mob that the clip plays, for want of its own.
    bool isOfMasterMob = false;
};

/// Of the event at `position` of the timeline.
[[nodiscard]] ClipName clipName(const HandOff& handOff, std::size_t position);

/// The name of the master mob that the event at `position` plays; null where there is none.
[[nodiscard]] const std::string* masterMobName(const HandOff& handOff, std::size_t position);

/// The names of all clips that have that of their master mob, by their position in the timeline's
/// events.
[[nodiscard]] std::map<std::size_t, std::string> namesByMasterMob(const HandOff& handOff);

}  // namespace trellant
