// SPDX-License-Identifier: Apache-2.0
// A finished file on its way to its final name: whole, and in nobody's place.
#pragma once

#include <trellant/base/read_files.h>

#include <string>

namespace [[gnu::visibility("default")]] trellant {
namespace salvage {

struct WholeFile {
    /// In the folder.
    std::string name{};
    /// A file with the same bytes stood there already; it was kept.
    bool wasThere = false;
};

/// Moves the file at `staged`, on the same file system, into `directory` under `name` or, where
/// another file has that, under the next free number of it. With `force` another file is replaced,
/// but none that is in `read`. Throws FileSystemError.
[[nodiscard]] WholeFile placeWhole(const std::string& staged, const std::string& directory,
                                   const std::string& name, bool force, const ReadFiles& read);

}  // namespace salvage
}  // namespace trellant
