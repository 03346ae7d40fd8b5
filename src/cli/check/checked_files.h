// SPDX-License-Identifier: Apache-2.0
// The files that a call names: OMF files, and folders that hold some.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace trellant::cli {

/// Entries that are looked at in one folder with what lies below it.
inline constexpr std::size_t mostFolderEntries = 1'000'000;

struct CheckedFile {
    std::string path{};
    /// Why there is nothing to be checked behind it, as with a folder without OMF files; empty
    /// otherwise.
    std::string failure{};
};

/// `names` as they stand, folders replaced by the files in them that end in .omf or .omfi (in any
/// case), by ascending path; with `recursive` those below them too, links to folders not followed.
/// A folder that holds none, that cannot be read or that holds too much has an entry with the
/// reason behind its files.
[[nodiscard]] std::vector<CheckedFile> checkedFiles(const std::vector<std::string>& names,
                                                    bool recursive);

}  // namespace trellant::cli
