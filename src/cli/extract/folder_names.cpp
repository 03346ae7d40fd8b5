// SPDX-License-Identifier: Apache-2.0
#include "folder_names.h"

#include <trellant/base/numbered_name.h>
#include <trellant/base/text.h>

#include <cstdint>
#include <filesystem>
#include <set>

namespace trellant::cli {

std::vector<std::string> foldersFor(const std::vector<std::string>& files,
                                    const std::string& directory) {
    if (files.size() == 1) {
        return {directory};
    }
    std::vector<std::string> folders;
    std::set<std::string> taken;
    for (const std::string& file : files) {
        const std::string stem = std::filesystem::path(file).stem().native();
        const bool isName = !stem.empty() && stem != "." && stem != "..";
        const NumberedName name = NumberedName::whole(isName ? stem : "audio");
        std::uint64_t number = name.number;
        // Names that differ in case only are one on some file systems.
        while (!taken.insert(lowerCased(name.withNumber(number))).second) {
            ++number;
        }
        folders.push_back(directory + "/" + name.withNumber(number));
    }
    return folders;
}

}  // namespace trellant::cli
