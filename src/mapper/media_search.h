// The files of the media search directory, by name. The one place of the mapping that looks around
// in the file system.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <unordered_map>
#include <vector>

namespace trellant {

/// Whether a regular file stands at `path`, links followed.
[[nodiscard]] bool regularFileExists(const std::string& path);

class MediaSearch {
  public:
    /// `directory`: where to look, folders within too; absent: nowhere. `workDirectory`: where
    /// files appear during the request, empty when none do; when it lies in `directory` they are
    /// found as well. Both absolute.
    MediaSearch(std::optional<std::string> directory, std::string workDirectory)
        : directory_(std::move(directory)), workDirectory_(std::move(workDirectory)) {}

    [[nodiscard]] bool hasDirectory() const noexcept { return directory_.has_value(); }

    /// The one audio file of that name (lower-cased); absent when there is none or several.
    /// The directory is read at the first call. Hidden files and folders and unreadable folders
    /// are passed over, links to folders are not entered. Never throws.
    [[nodiscard]] std::optional<std::string> locate(const std::string& lowerCasedName);

    /// Tells that a file now stands at `path`, in the work directory.
    void fileAppeared(const std::string& path);

  private:
    struct Match {
        std::string path;
        bool ambiguous = false;
    };

    /// What tells a folder apart, whatever path leads to it.
    struct Identity {
        dev_t device;
        ino_t number;
        bool operator==(const Identity&) const = default;
    };

    void readDirectory();
    void readFolder(int root, const std::string& relative, std::vector<std::string>& pending);
    void add(std::string_view fileName, std::string path);

    std::optional<std::string> directory_;
    std::string workDirectory_;
    bool wasRead_ = false;
    std::optional<Identity> workIdentity_;
    /// The work directory as the search sees it; absent when it lies elsewhere.
    std::optional<std::string> workDirectoryInSearch_;
    std::unordered_map<std::string, Match> matchByName_;
};

}  // namespace trellant
