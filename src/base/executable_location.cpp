// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/executable_location.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#ifdef __APPLE__
#include <climits>
#include <cstdlib>
#include <mach-o/dyld.h>
#else
#include <unistd.h>
#endif

namespace trellant {

namespace {

#ifdef __APPLE__

std::optional<std::string> executablePath() {
    std::uint32_t size = 0;
    ::_NSGetExecutablePath(nullptr, &size);
    std::string asStarted(size, '\0');
    std::string resolved(PATH_MAX, '\0');
    if (::_NSGetExecutablePath(asStarted.data(), &size) != 0 ||
        ::realpath(asStarted.c_str(), resolved.data()) == nullptr) {
        return std::nullopt;
    }
    resolved.resize(resolved.find('\0'));
    return resolved;
}

#else

std::optional<std::string> executablePath() {
    constexpr std::size_t longestPath = 1U << 20U;
    // The system cuts what does not fit without a word, so a full buffer means: try a larger one.
    for (std::string path(256, '\0'); path.size() <= longestPath; path.resize(path.size() * 2)) {
        const auto length = ::readlink("/proc/self/exe", path.data(), path.size());
        if (length <= 0) {
            return std::nullopt;
        }
        if (static_cast<std::size_t>(length) < path.size()) {
            path.resize(static_cast<std::size_t>(length));
            return path;
        }
    }
    return std::nullopt;
}

#endif

}  // namespace

std::optional<std::string> executableDirectory() {
    std::optional<std::string> path = executablePath();
    if (!path || !path->starts_with('/')) {
        return std::nullopt;
    }
    path->resize(std::max<std::size_t>(path->rfind('/'), 1));
    return path;
}

}  // namespace trellant
