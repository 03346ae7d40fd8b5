// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <trellant_testing/temporary_directory.h>
#include <vector>

namespace trellant::testing {

/// A test with a folder of its own.
class FolderTest : public ::testing::Test {
  protected:
    [[nodiscard]] std::string path(std::string_view name) const { return directory_.file(name); }
    [[nodiscard]] const std::filesystem::path& directory() const { return directory_.path(); }
    /// Everything below the test's folder, relative and in order.
    [[nodiscard]] std::vector<std::string> everything() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(directory())) {
            names.push_back(entry.path().lexically_relative(directory()).string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

  private:
    TemporaryDirectory directory_;
};

}  // namespace trellant::testing
