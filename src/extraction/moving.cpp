// SPDX-License-Identifier: Apache-2.0
#include "moving.h"

#include <trellant/io/errors.h>

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace trellant {

bool existsInAnyForm(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

void moveReplacing(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) != 0) {
        throw FileSystemError("create", to, errno);
    }
}

bool moveWithoutReplacing(const std::string& from, const std::string& to) {
    // A second name for the file fails where one exists, which renaming does not.
    if (::link(from.c_str(), to.c_str()) == 0) {
        ::unlink(from.c_str());
        return true;
    }
    if (errno == EEXIST || existsInAnyForm(to)) {
        return false;
    }
    // Not every file system has second names.
    moveReplacing(from, to);
    return true;
}

}  // namespace trellant
