// SPDX-License-Identifier: Apache-2.0
// A control group with little memory, where a test may make one.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>

namespace trellant::testing {

/// A group below the topmost one of the first version, or of the second, removed at the end.
class LimitedGroup {
  public:
    explicit LimitedGroup(std::uint64_t limit) {
        for (const auto& [root, file] :
             {std::pair("/sys/fs/cgroup/memory", "memory.limit_in_bytes"),
              std::pair("/sys/fs/cgroup", "memory.max")}) {
            const std::filesystem::path path =
                std::filesystem::path(root) / ("trellant-test-" + std::to_string(::getpid()));
            std::error_code failure;
            if (!std::filesystem::create_directory(path, failure)) {
                continue;
            }
            std::ofstream limitFile(path / file);
            limitFile << limit << std::flush;
            if (limitFile.good() && std::filesystem::exists(path / "cgroup.procs")) {
                path_ = path;
                return;
            }
            ::rmdir(path.c_str());
        }
    }
    LimitedGroup(const LimitedGroup&) = delete;
    LimitedGroup& operator=(const LimitedGroup&) = delete;
    LimitedGroup(LimitedGroup&&) = delete;
    LimitedGroup& operator=(LimitedGroup&&) = delete;
    ~LimitedGroup() {
        if (path_) {
            ::rmdir(path_->c_str());
        }
    }

    /// False where the test may make no groups.
    [[nodiscard]] bool exists() const noexcept { return path_.has_value(); }
    [[nodiscard]] std::string processes() const { return (*path_ / "cgroup.procs").string(); }

  private:
    std::optional<std::filesystem::path> path_;
};

}  // namespace trellant::testing
