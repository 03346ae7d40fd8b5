// SPDX-License-Identifier: Apache-2.0
// What the commands that only look have in common: one look at a file with a bar, its failures in
// words, its verdict for scripts.
#pragma once

#include "fail_on.h"
#include "terminal/console.h"
#include "terminal/deliver.h"
#include "terminal/exit_status.h"
#include "terminal/failure_line.h"

#include <trellant/base/cancellation.h>
#include <trellant/handoff/hand_off.h>

#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

/// A file as it was found: its hand-off, or why there is none.
struct Inspection {
    std::optional<HandOff> handOff{};
    /// For people, without the file's name; was said on the console.
    std::string failure{};
    /// It is an OMF 1.x file, and the worker is of an earlier version, which does not read it.
    bool isOlderModel = false;
};

struct InspectionRequest {
    std::string file;
    std::vector<std::string> mediaFolders{};
    /// As HandOffRequest has it.
    bool contents = false;
    /// The caller shows itself what is remarked of the file as a whole.
    bool showsRemarks = false;
};

/// Reads the file and says on the console what was repaired.
[[nodiscard]] Inspection inspect(const InspectionRequest& request, Console& console,
                                 const StopToken& stop);

/// Says why reading `file` failed, and gives the reason without the file's name.
std::string reportFailure(const std::string& file, const std::exception& error, Console& console);

/// Says what is remarked of the file as a whole.
void reportRemarks(const std::string& file, const HandOff& handOff, Console& console);

/// Says, one by one, what had to be changed to make the timeline usable.
void reportChanges(const std::string& file, const HandOff& handOff, Console& console);

/// Audio files outside of the hand-off that were looked into: no output takes their place.
void protectMedia(const HandOff& handOff, Delivery& delivery);

/// done, or lossesFound when the hand-off holds what `failOn` names.
[[nodiscard]] ExitStatus verdict(const HandOff& handOff, FailOn failOn);

}  // namespace trellant::cli
