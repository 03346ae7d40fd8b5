// SPDX-License-Identifier: Apache-2.0
#include "kept_descriptors.h"

#include <algorithm>
#include <charconv>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <string_view>
#include <unistd.h>

namespace trellant {

namespace {

/// Where the system lists no descriptors, they are tried one by one.
constexpr long mostTried = 65'536;

struct FolderCloser {
    void operator()(DIR* folder) const noexcept { ::closedir(folder); }
};

bool isKept(int descriptor) noexcept {
    const int flags = ::fcntl(descriptor, F_GETFD);
    return descriptor > STDERR_FILENO && flags >= 0 && (flags & FD_CLOEXEC) == 0;
}

std::optional<std::vector<int>> listedIn(const char* path) {
    const std::unique_ptr<DIR, FolderCloser> folder(::opendir(path));
    if (folder == nullptr) {
        return std::nullopt;
    }
    std::vector<int> kept;
    while (const dirent* const entry = ::readdir(folder.get())) {
        const std::string_view name = entry->d_name;
        int descriptor = -1;
        const auto parsed = std::from_chars(name.data(), name.data() + name.size(), descriptor);
        if (parsed.ec == std::errc() && isKept(descriptor)) {
            kept.push_back(descriptor);
        }
    }
    return kept;
}

}  // namespace

std::vector<int> keptDescriptors() {
#ifdef __linux__
    if (auto listed = listedIn("/proc/self/fd")) {
        return std::move(*listed);
    }
#endif
    std::vector<int> kept;
    const long end = std::clamp(::sysconf(_SC_OPEN_MAX), 0L, mostTried);
    for (int descriptor = STDERR_FILENO + 1; descriptor < end; ++descriptor) {
        if (isKept(descriptor)) {
            kept.push_back(descriptor);
        }
    }
    return kept;
}

int closeKeptDescriptors(posix_spawn_file_actions_t& actions) {
    for (const int descriptor : keptDescriptors()) {
        if (const int failure = ::posix_spawn_file_actions_addclose(&actions, descriptor);
            failure != 0) {
            return failure;
        }
    }
    return 0;
}

}  // namespace trellant
