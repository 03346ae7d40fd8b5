// SPDX-License-Identifier: Apache-2.0
// From the hidden folder to the names that were wanted.
#pragma once

#include <trellant/base/read_files.h>

#include <string>
#include <utility>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// What a person is told to do about a name that is taken.
struct TakenNameAdvice {
    std::string run = "this export";
    /// "choose another --name".
    std::string instead = "choose another --name";
    /// "--name chooses another name".
    std::string orElse = "--name chooses another name";
};

class FinalPlaces {
  public:
    /// `directory`: absolute. `force`: files that are there are replaced, but none that the run
    /// reads.
    FinalPlaces(std::string directory, bool force, TakenNameAdvice advice = {})
        : directory_(std::move(directory)), force_(force), advice_(std::move(advice)) {}

    /// A file that the run reads: it is never replaced.
    void protect(const std::string& path) { read_.add(path); }

    /// Throws ExportTargetError when one of these names (files, or the folder of media, empty for
    /// none) is taken and may not be replaced.
    void check(const std::vector<std::string>& files, const std::string& folder) const;

    /// Moves a file to that name. Throws ExportTargetError, FileSystemError.
    void moveFile(const std::string& staged, const std::string& name) const;
    /// Moves a folder of files; where one is there already, its files one by one into that.
    void moveFolder(const std::string& staged, const std::string& name) const;

  private:
    void checkFile(const std::string& name) const;
    [[nodiscard]] std::string pathOf(const std::string& name) const {
        return directory_ + "/" + name;
    }

    std::string directory_;
    bool force_;
    TakenNameAdvice advice_;
    ReadFiles read_;
};

}  // namespace trellant
