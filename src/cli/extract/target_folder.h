// SPDX-License-Identifier: Apache-2.0
// The folder that a command writes into.
#pragma once

#include "terminal/console.h"

#include <string>

namespace trellant::cli {

/// The path of a folder that a person names, from the root on and without a slash at its end.
[[nodiscard]] std::string absoluteFolder(const std::string& given);

/// The wanted folder, made when it is missing, and gone again when nothing came to lie in it.
class TargetFolder {
  public:
    /// Throws FileSystemError.
    explicit TargetFolder(const std::string& given);
    ~TargetFolder();
    TargetFolder(const TargetFolder&) = delete;
    TargetFolder& operator=(const TargetFolder&) = delete;
    TargetFolder(TargetFolder&&) = delete;
    TargetFolder& operator=(TargetFolder&&) = delete;

    /// Absolute.
    [[nodiscard]] const std::string& path() const noexcept { return path_; }

  private:
    std::string path_;
    bool isNew_ = false;
};

/// Says which hidden folders in `directory`, which a person calls `named`, are left from runs that
/// were ended.
void reportLeftFolders(const std::string& named, const std::string& directory, Console& console);

}  // namespace trellant::cli
