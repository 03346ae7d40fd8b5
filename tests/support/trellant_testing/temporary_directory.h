// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <trellant/io/byte_readers.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace trellant::testing {

/// A new empty folder, removed with all that is in it at the end.
class TemporaryDirectory {
  public:
    TemporaryDirectory();
    /// Below `parent`, for another file system.
    explicit TemporaryDirectory(const std::filesystem::path& parent);
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    TemporaryDirectory(TemporaryDirectory&&) = delete;
    TemporaryDirectory& operator=(TemporaryDirectory&&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
    /// The path of `name` inside, as the system's bytes.
    [[nodiscard]] std::string file(std::string_view name) const;

  private:
    std::filesystem::path path_;
};

/// Writes a new file with these bytes, in place of what stands there, and gives its path back.
std::string writeFile(const std::string& path, ByteView bytes);
[[nodiscard]] Bytes readFile(const std::string& path);

}  // namespace trellant::testing
