// SPDX-License-Identifier: Apache-2.0
// What the commands that only look have in common: one handOff with a bar, its failures in
// words, its verdict for scripts.
#pragma once

#include "fail_on.h"
#include "terminal/console.h"
#include "terminal/exit_status.h"

#include <trellant/base/cancellation.h>
#include <trellant/handoff/hand_off.h>

#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

/// Inspects the file and tells of repairs; absent when it could not be read, which was told then.
[[nodiscard]] std::optional<HandOff> look(const std::string& file,
                                          const std::vector<std::string>& mediaFolders,
                                          Console& console, const StopToken& stop);

/// Tells why an handOff of `file` failed.
void tellFailure(const std::string& file, const std::exception& error, Console& console);
/// The same for the error in hand: to be called inside a catch block.
void tellFailure(const std::string& file, Console& console);

/// Tells, one by one, what had to be changed to make the timeline usable.
void tellChanges(const std::string& file, const HandOff& handOff, Console& console);

/// done, or lossesFound when the handOff holds what `failOn` names.
[[nodiscard]] ExitStatus verdict(const HandOff& handOff, FailOn failOn);

}  // namespace trellant::cli
