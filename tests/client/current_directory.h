// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>

namespace trellant::testing {

/// The test's current directory, as long as it lives.
class CurrentDirectory {
  public:
    explicit CurrentDirectory(const std::filesystem::path& directory) {
        std::filesystem::current_path(directory);
    }
    ~CurrentDirectory() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
    }
    CurrentDirectory(const CurrentDirectory&) = delete;
    CurrentDirectory& operator=(const CurrentDirectory&) = delete;
    CurrentDirectory(CurrentDirectory&&) = delete;
    CurrentDirectory& operator=(CurrentDirectory&&) = delete;

  private:
    std::filesystem::path before_ = std::filesystem::current_path();
};

}  // namespace trellant::testing
