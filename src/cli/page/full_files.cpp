// SPDX-License-Identifier: Apache-2.0
#include "full_files.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/base/printable_path.h>
#include <trellant/base/url.h>
#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>
#include <trellant/model/timeline_json.h>

#include <filesystem>
#include <stdexcept>

namespace trellant::cli {

namespace {

constexpr std::int64_t mostBytes = 1'000'000'000;

AAFTimeline timelineOf(const std::filesystem::path& folder) {
    const std::string path = (folder / "timeline.json").native();
    try {
        const RandomAccessFile file(path);
        if (file.size() > static_cast<std::uint64_t>(mostBytes)) {
            throw std::runtime_error("it is too large");
        }
        const Bytes bytes = file.read(0, static_cast<std::int64_t>(file.size()));
        std::string text(bytes.size(), '\0');
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            text[i] = static_cast<char>(bytes[i]);
        }
        return decodeJson<AAFTimeline>(text, TimelineChecks::none);
    } catch (const std::exception& error) {
        throw std::runtime_error(
            "--media-folder needs a folder that trellant extract has written: " +
            printablePath(path) + ": " + error.what());
    }
}

}  // namespace

std::vector<std::string> fullFiles(const AAFTimeline& timeline, const std::string& folder,
                                   const std::string& pageFolder) {
    std::error_code ignored;
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(folder, ignored);
    const AAFTimeline extracted = timelineOf(canonical);
    KeyedMap<std::string_view, std::string> byID;
    for (const AAFSourceEssence& essence : extracted.essences) {
        const auto path = essence.fileURL
                              ? pathOfReference(essence.fileURL->text, canonical.native())
                              : std::nullopt;
        if (path && std::filesystem::is_regular_file(*path, ignored)) {
            byID.emplace(essence.id, relativeFileURL(*path, pageFolder).text);
        }
    }
    std::vector<std::string> files;
    files.reserve(timeline.essences.size());
    for (const AAFSourceEssence& essence : timeline.essences) {
        const auto found = byID.find(essence.id);
        files.push_back(found == byID.end() ? std::string() : found->second);
    }
    return files;
}

}  // namespace trellant::cli
