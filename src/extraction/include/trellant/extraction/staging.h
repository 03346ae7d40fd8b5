// SPDX-License-Identifier: Apache-2.0
// The folder inside the wanted one where files come into being. Hidden, so that a search for media
// does not see half a file.
#pragma once

#include <trellant/base/file_descriptor.h>
#include <trellant/base/numbered_name.h>

#include <cstdint>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

class Staging {
  public:
    /// A new empty folder in `directory` (absolute). Throws FileSystemError.
    explicit Staging(const std::string& directory);
    /// Removes it with what is left in it.
    ~Staging();
    Staging(const Staging&) = delete;
    Staging& operator=(const Staging&) = delete;
    Staging(Staging&&) = delete;
    Staging& operator=(Staging&&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    /// Its own name.
    [[nodiscard]] std::string name() const { return path_.substr(path_.rfind('/') + 1); }
    /// The path of a name in it.
    [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }
    /// Whether `path` names a regular file that lies directly in it.
    [[nodiscard]] bool holds(const std::string& path) const;
    /// The name of the file at `path`, which lies in it.
    [[nodiscard]] std::string nameOf(const std::string& path) const {
        return path.substr(path_.size() + 1);
    }
    /// The path of `name`, under the first number from its own on that is free here.
    [[nodiscard]] std::string freeFile(const NumberedName& name) const;
    /// Names of the files in it that are whole: all but the one that was written to last.
    [[nodiscard]] std::vector<std::string> wholeFiles() const;
    /// Bytes of all files in it so far.
    [[nodiscard]] std::uint64_t bytes() const;

  private:
    std::string path_;
    /// Locked as long as the run lives, so that others can tell this folder from one that is left.
    FileDescriptor lock_;
};

/// Bytes of the regular file at `path`; 0 for anything else.
[[nodiscard]] std::uint64_t bytesOfFile(const std::string& path) noexcept;

}  // namespace trellant
