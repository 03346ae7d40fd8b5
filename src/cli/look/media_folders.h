// The audio files in the folders that a person named, by file name.
#pragma once

#include "step_progress.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace trellant::cli {

/// The lower-cased file name within a path as any system writes it: what a file is looked for by.
/// Empty when the path names none.
[[nodiscard]] std::string wantedFileName(std::string path);

class MediaFolders {
  public:
    /// Reads `folders` and the folders in them. Hidden ones and unreadable ones are passed over,
    /// links to folders are not entered; a file that is reached in two ways counts once. `ignored`:
    /// paths that are no finds, such as what this run has written. Throws AAFCancellationError.
    MediaFolders(const std::vector<std::string>& folders, const std::vector<std::string>& ignored,
                 const StepProgress& progress);

    /// The paths of all audio files of that name (wantedFileName), ascending.
    [[nodiscard]] std::vector<std::string> named(const std::string& wanted) const;

    /// There were more files than are looked at.
    [[nodiscard]] bool incomplete() const noexcept { return incomplete_; }

  private:
    using Identity = std::pair<std::uint64_t, std::uint64_t>;

    void readFolder(const std::string& folder, const StepProgress& progress);
    void add(const std::string& path, std::string_view name);

    std::set<Identity> seen_;
    std::map<std::string, std::vector<std::string>> pathsByName_;
    std::uint64_t entries_ = 0;
    bool incomplete_ = false;
};

}  // namespace trellant::cli
