// SPDX-License-Identifier: Apache-2.0
// The files that a run reads, so that nothing it writes takes the place of one of them.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <utility>

namespace [[gnu::visibility("default")]] trellant {

/// A set of files, each known by what it is and not by one of its names: a link, a second name and
/// a way around lead to the same file.
class ReadFiles {
  public:
    /// The file at `path`, and the link itself where `path` is one. Nothing happens where there is
    /// none.
    void add(const std::string& path);
    /// Whether what stands at `path`, or what it leads to, is one of the files.
    [[nodiscard]] bool holds(const std::string& path) const;

  private:
    using Identity = std::pair<std::uint64_t, std::uint64_t>;
    std::set<Identity> identities_;
};

}  // namespace trellant
