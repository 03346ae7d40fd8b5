// SPDX-License-Identifier: Apache-2.0
// The audio files beside a hand-off and in the folders that a person named, by file name.
#pragma once

#include <trellant/handoff/work_progress.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// The lower-cased file name within a path as any system writes it: what a file is looked for by.
/// Empty when the path names none.
[[nodiscard]] std::string wantedFileName(std::string path);

/// A file that bears a wanted name.
struct MediaFile {
    std::string path{};
    /// It lies beside the hand-off itself.
    bool isBeside = false;
    bool operator==(const MediaFile&) const = default;
};

/// Hidden folders and unreadable ones are passed over, links to folders are not entered; a file
/// that is reached in two ways counts once, where it was seen first.
class MediaFolders {
  public:
    /// `ignored`: paths that are no finds, such as what this run has written. `progress` must
    /// outlive this.
    MediaFolders(const std::vector<std::string>& ignored, const WorkProgress& progress);

    /// Reads the folder in which `file` lies, two levels below it too: where exports put audio. Of
    /// a folder with very many files only the first are seen. Throws AAFCancellationError.
    void addBeside(const std::string& file);
    /// Reads `folder` and all folders in it. Throws AAFCancellationError.
    void addFolder(const std::string& folder);

    /// All audio files of that name (wantedFileName): those beside the hand-off first, then by
    /// ascending path.
    [[nodiscard]] std::vector<MediaFile> named(const std::string& wanted) const;

    /// There were more files in a folder that was added by name than are looked at.
    [[nodiscard]] bool incomplete() const noexcept { return incomplete_; }

  private:
    using Identity = std::pair<std::uint64_t, std::uint64_t>;

    /// False when the folder holds more than `most` entries.
    [[nodiscard]] bool read(const std::string& folder, int deepest, std::uint64_t most,
                            bool isBeside);
    void add(const std::string& path, std::string_view name, bool isBeside);

    const WorkProgress& progress_;
    std::set<Identity> seen_;
    std::map<std::string, std::vector<MediaFile>> filesByName_;
    std::uint64_t entries_ = 0;
    bool incomplete_ = false;
};

}  // namespace trellant
