// SPDX-License-Identifier: Apache-2.0
// The files that a call names: OMF files, and folders that hold some.
#pragma once

#include "terminal/console.h"

#include <cstddef>
#include <string>
#include <vector>

namespace trellant::cli {

/// Entries that are looked at in one folder with what lies below it.
inline constexpr std::size_t mostFolderEntries = 1'000'000;

/// `names` as they stand, folders replaced by the files in them that end in .omf or .omfi (in any
/// case), by ascending path; with `recursive` those below them too, links to folders not followed.
/// Says of a folder that holds none, that cannot be read or that holds too much on the console;
/// `failed` is set then.
[[nodiscard]] std::vector<std::string> checkedFiles(const std::vector<std::string>& names,
                                                    bool recursive, Console& console, bool& failed);

}  // namespace trellant::cli
