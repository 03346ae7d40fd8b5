// SPDX-License-Identifier: Apache-2.0
#include "directories.h"

#include <trellant/io/errors.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace trellant {

namespace {

constexpr mode_t allButUmask = 0777;

struct Freer {
    void operator()(char* text) const noexcept { std::free(text); }
};

bool isDirectory(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

std::string currentDirectory() {
    const std::unique_ptr<char, Freer> path(::getcwd(nullptr, 0));
    if (path == nullptr) {
        throw FileSystemError("find", ".", errno);
    }
    return path.get();
}

void createDirectories(const std::string& path) {
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const auto folder = path.substr(0, end);
        if (::mkdir(folder.c_str(), allButUmask) != 0) {
            const int reason = errno;
            // A folder that is there may refuse its creation in other words (read-only, no
            // permission above): what counts is that it is there.
            if (!isDirectory(folder)) {
                const bool fileInTheWay = reason == EEXIST && end != std::string::npos;
                throw FileSystemError("create directory", path, fileInTheWay ? ENOTDIR : reason);
            }
        }
        if (end == std::string::npos) {
            return;
        }
    }
}

}  // namespace trellant
