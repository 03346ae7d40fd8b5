// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/read_files.h>

#include <sys/stat.h>

namespace trellant {

void ReadFiles::add(const std::string& path) {
    for (const auto look : {::stat, ::lstat}) {
        struct stat status {};
        if (look(path.c_str(), &status) == 0) {
            identities_.emplace(status.st_dev, status.st_ino);
        }
    }
}

bool ReadFiles::holds(const std::string& path) const {
    for (const auto look : {::stat, ::lstat}) {
        struct stat status {};
        if (look(path.c_str(), &status) == 0 &&
            identities_.contains({status.st_dev, status.st_ino})) {
            return true;
        }
    }
    return false;
}

}  // namespace trellant
