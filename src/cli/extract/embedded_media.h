// Audio inside the interchange file that the worker's answer alone does not account for: sources
// that were written over one another, and media that no clip plays.
#pragma once

#include "staging.h"

#include <trellant/model/timeline.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

/// Audio inside the file that no source of the timeline is.
struct UnusedMedia {
    std::size_t count = 0;
    /// Of the first of them, fit for a message.
    std::vector<std::string> names{};
};

struct EmbeddedMediaCheck {
    /// Absent when it could not be counted.
    std::optional<UnusedMedia> unused{};
    /// Why sources that shared a file are without one now.
    std::optional<std::string> failure{};
};

/// Sources in `timeline` that name one file, of which the last one's audio is left, are taken out
/// of `omfFile` again, each into a file of its own; one that cannot be loses its file. A damaged
/// file ends a child of this process at most, which must have one thread only.
[[nodiscard]] EmbeddedMediaCheck separateSources(const std::string& omfFile, AAFTimeline& timeline,
                                                 const Staging& staging);

}  // namespace trellant::cli
