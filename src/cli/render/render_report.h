// SPDX-License-Identifier: Apache-2.0
// What a person and a program are told of a rendering.
#pragma once

#include "render.h"

#include <string>
#include <vector>

namespace trellant::cli {

/// A few lines. `file` and `directory` as the person named them.
[[nodiscard]] std::string renderScreen(const std::string& file, const std::string& directory,
                                       const RenderCall& call, const render::RenderReport& report);

/// One JSON object on a line.
[[nodiscard]] std::string renderLine(const std::string& file, const std::string& directory,
                                     const RenderCall& call, const render::RenderReport& report);

/// What to do about silence and about what was cut off, a line for each; none where all is well.
[[nodiscard]] std::vector<std::string> renderRemarks(const render::RenderReport& report);

}  // namespace trellant::cli
