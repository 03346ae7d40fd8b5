// SPDX-License-Identifier: Apache-2.0
#include "target_folder.h"

#include <trellant/base/printable_path.h>
#include <trellant/base/url.h>
#include <trellant/extraction/extraction.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace trellant::cli {

namespace fs = std::filesystem;

std::string absoluteFolder(const std::string& given) {
    std::error_code ignored;
    std::string path = absolutePath(given, fs::current_path(ignored).native());
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

TargetFolder::TargetFolder(const std::string& given) : path_(absoluteFolder(given)) {
    std::error_code error;
    isNew_ = fs::create_directories(path_, error);
    if (error) {
        throw FileSystemError("create folder", given, error.value());
    }
}

TargetFolder::~TargetFolder() {
    if (isNew_) {
        // Refused as long as there is something in it.
        ::rmdir(path_.c_str());
    }
}

void reportLeftFolders(const std::string& named, const std::string& directory, Console& console) {
    constexpr std::size_t mostNames = 3;
    const std::vector<std::string> left = stagingFoldersIn(directory);
    if (left.empty()) {
        return;
    }
    std::string names;
    for (std::size_t i = 0; i < std::min(left.size(), mostNames); ++i) {
        names += (i == 0 ? "" : ", ") + left[i];
    }
    if (left.size() > mostNames) {
        names += " and " + std::to_string(left.size() - mostNames) + " more";
    }
    console.note(left.size() == 1 ? "the folder " + names + " in " + printablePath(named) +
                                        " is left from a run that was ended and may go"
                                  : "the folders " + names + " in " + printablePath(named) +
                                        " are left from runs that were ended and may go");
}

}  // namespace trellant::cli
