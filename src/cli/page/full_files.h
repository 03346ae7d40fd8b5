// SPDX-License-Identifier: Apache-2.0
// The whole audio files that `trellant extract` put into a folder, as a page links to them.
#pragma once

#include <trellant/model/timeline.h>

#include <string>
#include <vector>

namespace trellant::cli {

/// For each essence of `timeline` how a page in `pageFolder` (absolute, without links) names its
/// file, by the timeline.json in `folder`; empty where that has none. Throws std::runtime_error
/// where there is no such timeline.
[[nodiscard]] std::vector<std::string> fullFiles(const AAFTimeline& timeline,
                                                 const std::string& folder,
                                                 const std::string& pageFolder);

}  // namespace trellant::cli
