// SPDX-License-Identifier: Apache-2.0
// The files of a timeline's sources, each once however many sources name it.
#pragma once

#include <trellant/model/timeline.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace trellant::listening {

/// What is said of a source without a file.
inline constexpr const char* noFileReason = "its audio file is missing";

/// Where the essence's file lies; absent when there is no regular file (what is read is never a
/// pipe or a device, which may have no end).
[[nodiscard]] std::optional<std::string> filePath(const AAFSourceEssence& essence);

/// By position in the timeline's essences: whether any clip plays them.
[[nodiscard]] std::vector<bool> playedEssences(const AAFTimeline& timeline);

}  // namespace trellant::listening
