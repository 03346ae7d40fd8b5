// SPDX-License-Identifier: Apache-2.0
// The files of the media search directory, by name, and whether a file is there. The one place of
// the mapping that looks around in the file system.
#pragma once

#include <trellant/base/keyed_hash.h>

#include <cstddef>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <unordered_map>
#include <vector>

namespace trellant {

/// Whether a regular file stands at `path`, links followed.
[[nodiscard]] bool regularFileExists(const std::string& path);

/// Whether a regular file with bytes of its own stands at `path`, links followed: those below /proc
/// and /sys are doors into the system, whatever kind they say they are.
[[nodiscard]] bool mediaFileExists(const std::string& path);

class MediaSearch {
  public:
    /// `directory`: where to look, folders within too; absent: nowhere. `workDirectory`: where
    /// files appear during the request, empty when none do; when it lies in `directory` they are
    /// found as well. Both absolute.
    MediaSearch(std::optional<std::string> directory, std::string workDirectory)
        : directory_(std::move(directory)), workDirectory_(std::move(workDirectory)) {}

    [[nodiscard]] bool hasDirectory() const noexcept { return directory_.has_value(); }

    /// From here on the process opens only `files` outside the work directory.
    void confineTo(const std::vector<std::string>& files) {
        openable_.emplace(files.begin(), files.end());
    }
    /// mediaFileExists, of a file that can be opened as far as the process has confined itself.
    [[nodiscard]] bool isInReach(const std::string& path) const;

    /// The one audio file of that name (lower-cased); absent when there is none or several.
    /// The directory is read at the first call. Hidden files and folders and unreadable folders
    /// are passed over, links to folders are not entered. Never throws.
    [[nodiscard]] std::optional<std::string> locate(const std::string& lowerCasedName);

    /// Tells that a file now stands at `path`, in the work directory.
    void fileAppeared(const std::string& path);

  private:
    /// A file by its name and the place of its folder in `folders_`.
    struct Match {
        std::string_view name;
        std::size_t folder = 0;
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
    void add(std::string_view fileName, std::size_t folder);
    /// The same text, in memory that lasts.
    [[nodiscard]] std::string_view kept(std::string_view text);

    std::optional<std::string> directory_;
    std::string workDirectory_;
    /// Absent: any.
    std::optional<KeyedSet<std::string>> openable_;
    bool wasRead_ = false;
    std::optional<Identity> workIdentity_;
    /// The place of the work directory in `folders_`; absent when it lies elsewhere.
    std::optional<std::size_t> workDirectoryInSearch_;
    /// The folders that were read, by the path that led to them.
    std::vector<std::string> folders_;
    /// Names and matches one after the other, without an allocation for each: a library of sounds
    /// has hundreds of thousands.
    std::pmr::monotonic_buffer_resource memory_;
    std::pmr::unordered_map<std::string_view, Match, KeyedHash> matchByName_{&memory_};
};

}  // namespace trellant
