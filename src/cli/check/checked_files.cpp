// SPDX-License-Identifier: Apache-2.0
#include "checked_files.h"

#include <trellant/base/text.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace trellant::cli {

namespace fs = std::filesystem;

namespace {

bool isOmf(const fs::path& path) {
    const std::string extension = lowerCased(path.extension().native());
    return extension == ".omf" || extension == ".omfi";
}

/// The files in a folder; false when not all of it could be looked at.
template <class Iterator>
bool gather(const std::string& folder, std::vector<std::string>& files) {
    std::error_code failure;
    std::size_t entries = 0;
    for (Iterator entry(folder, failure), end; !failure && entry != end; entry.increment(failure)) {
        if (++entries > mostFolderEntries) {
            return false;
        }
        std::error_code ignored;
        if (isOmf(entry->path()) && entry->is_regular_file(ignored)) {
            files.push_back(entry->path().native());
        }
    }
    return !failure;
}

}  // namespace

std::vector<CheckedFile> checkedFiles(const std::vector<std::string>& names, bool recursive) {
    std::vector<CheckedFile> all;
    for (const std::string& name : names) {
        std::error_code ignored;
        if (!fs::is_directory(name, ignored)) {
            all.push_back({.path = name});
            continue;
        }
        std::vector<std::string> files;
        const bool isWhole = recursive ? gather<fs::recursive_directory_iterator>(name, files)
                                       : gather<fs::directory_iterator>(name, files);
        std::sort(files.begin(), files.end());
        for (std::string& file : files) {
            all.push_back({.path = std::move(file)});
        }
        if (!isWhole) {
            all.push_back({name, "not all of this folder could be looked at"});
        } else if (files.empty()) {
            all.push_back(
                {name, std::string("there is no OMF file in this folder") +
                           (recursive ? "" : "; --recursive looks into the folders in it too")});
        }
    }
    return all;
}

}  // namespace trellant::cli
