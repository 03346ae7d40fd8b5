// SPDX-License-Identifier: Apache-2.0
// The object that a path of a loss record leads to.
#pragma once

#include "dump_contents.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::cli {

struct PathStep {
    /// As written: "component[2]".
    std::string text;
    std::uint32_t object = 0;
    /// The property of the object before that leads here; empty for the first step, and where a
    /// path leaves objects out in between.
    std::string by;
};

struct PathResolution {
    /// Those that exist.
    std::vector<PathStep> steps;
    /// Why the next one does not, and what there is instead.
    std::optional<std::string> fault{};
};

/// Follows a path as records spell it: CLASS[object], slot[object], component[i] and input[i]
/// from 0, FinalRendering, FadeIn and FadeOut, with "/" between.
[[nodiscard]] PathResolution resolvePath(const DumpContents& contents, std::string_view path);

}  // namespace trellant::cli
