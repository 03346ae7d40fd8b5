// What the commands that only look have in common: one inspection with a bar, its failures in
// words, its verdict for scripts.
#pragma once

#include "fail_on.h"
#include "inspection.h"
#include "terminal/console.h"
#include "terminal/exit_status.h"

#include <trellant/base/cancellation.h>

#include <exception>
#include <optional>
#include <string>

namespace trellant::cli {

/// Inspects the file and tells of repairs; absent when it could not be read, which was told then.
[[nodiscard]] std::optional<Inspection> look(const std::string& file,
                                             const std::optional<std::string>& mediaFolder,
                                             Console& console, const StopToken& stop);

/// Tells why an inspection of `file` failed.
void tellFailure(const std::string& file, const std::exception& error, Console& console);
/// The same for the error in hand: to be called inside a catch block.
void tellFailure(const std::string& file, Console& console);

/// Tells, one by one, what had to be changed to make the timeline usable.
void tellChanges(const std::string& file, const Inspection& inspection, Console& console);

/// done, or lossesFound when the inspection holds what `failOn` names.
[[nodiscard]] ExitStatus verdict(const Inspection& inspection, FailOn failOn);

}  // namespace trellant::cli
