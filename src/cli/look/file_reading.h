// What the command reads from the interchange file itself, beside what the worker answers: where
// its losses lie, and which compositions there are. Read in a process of its own, so that a damaged
// file costs these facts at most.
#pragma once

#include "inspection.h"

#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

struct FileReading {
    std::vector<PlacedLoss> losses;
    std::vector<AAFComposition> compositions;
    /// Why the rest is empty, when the file could not be read that way.
    std::optional<std::string> failure;
};

/// `mediaFolder` as the worker got it, so that the losses are the same.
[[nodiscard]] FileReading readFile(const std::string& file,
                                   const std::optional<std::string>& mediaFolder);

}  // namespace trellant::cli
