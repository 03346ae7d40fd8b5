// SPDX-License-Identifier: Apache-2.0
// `trellant check`: hand-offs held against the rules of a profile.
#pragma once

#include "terminal/console.h"
#include "terminal/destination.h"
#include "terminal/exit_status.h"

#include <trellant/base/cancellation.h>
#include <trellant/check/finding.h>

#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

struct CheckCall {
    enum class Form { people, json, junit, sarif };

    /// OMF files, and folders of them.
    std::vector<std::string> files;
    /// Look for OMF files in folders within the folders too.
    bool recursive = false;
    /// The name of a profile that comes with the program, or a file.
    std::string profile = "post";
    std::vector<std::string> mediaFolders;
    /// Read the audio too, whatever the profile says.
    bool audio = false;
    Form form = Form::people;
    check::Severity failOn = check::Severity::error;
    Destination destination;
    /// In place of a check: a table of the rules, or the page of one.
    bool listRules = false;
    std::optional<std::string> explain;
};

/// Writes one verdict after the other. A stop ends it soon. Throws OutputClosed, and
/// FileSystemError for standard output; all other failures are messages and a status.
[[nodiscard]] ExitStatus runCheck(const CheckCall& call, Console& console, const StopToken& stop);

}  // namespace trellant::cli
