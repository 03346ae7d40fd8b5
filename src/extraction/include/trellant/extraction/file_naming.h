// SPDX-License-Identifier: Apache-2.0
// What an audio file is called whose own name says nothing.
#pragma once

#include <trellant/handoff/hand_off.h>

#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// For each of the timeline's essences, in their order, the name of the first master mob that plays
/// it, made fit for a file name, without an extension: where the essence has no name, or bears the
/// name of the interchange file at `path`, or one that others bear too. Absent where its own name
/// serves, and where no master mob is named.
[[nodiscard]] std::vector<std::optional<std::string>> namesOfMasterMobs(const HandOff& handOff,
                                                                        const std::string& path);

}  // namespace trellant
