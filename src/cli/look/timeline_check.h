// SPDX-License-Identifier: Apache-2.0
// Whether JSON is a timeline that programs may rely on.
#pragma once

#include <trellant/handoff/changes.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

struct TimelineCheck {
    bool valid = false;
    /// The failure of a timeline that could be decoded.
    std::optional<DescribedChange> failure{};
    std::string place{};
    /// Why it could not even be decoded.
    std::string fault{};
    std::size_t tracks = 0;
    std::size_t clips = 0;
    /// Audio files that the timeline names, and those of them that are not there.
    std::size_t audioFiles = 0;
    std::vector<std::string> missingAudio{};
};

/// `text`: a timeline, or a result of the worker with one. `folder` (absolute): where it lies, for
/// a document that names files by the way from there.
[[nodiscard]] TimelineCheck checkTimeline(const std::string& text, const std::string& folder);

}  // namespace trellant::cli
