// SPDX-License-Identifier: Apache-2.0
#include "source_files.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/base/url.h>

#include <filesystem>
#include <string_view>
#include <system_error>

namespace trellant::listening {

std::optional<std::string> filePath(const AAFSourceEssence& essence) {
    auto path = essence.fileURL ? pathOfFileURL(essence.fileURL->text) : std::nullopt;
    std::error_code ignored;
    if (path && !std::filesystem::is_regular_file(*path, ignored)) {
        path.reset();
    }
    return path;
}

std::vector<bool> playedEssences(const AAFTimeline& timeline) {
    KeyedSet<std::string_view> played;
    for (const AAFClipEvent& event : timeline.events) {
        played.insert(event.essenceID);
    }
    std::vector<bool> result;
    result.reserve(timeline.essences.size());
    for (const AAFSourceEssence& essence : timeline.essences) {
        result.push_back(played.contains(essence.id));
    }
    return result;
}

}  // namespace trellant::listening
