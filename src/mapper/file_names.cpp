// SPDX-License-Identifier: Apache-2.0
#include "file_names.h"

#include <trellant/base/text.h>

#include <cerrno>
#include <cstdint>
#include <limits>
#include <sys/stat.h>

namespace trellant {

namespace {

constexpr std::size_t maximumCharacters = 120;
/// What common file systems hold in one name.
constexpr std::size_t maximumNameBytes = 255;
constexpr std::uint64_t lastNumber = 999;

/// Whether anything stands at the path, in any form. What cannot be looked at may be there: nothing
/// is ever replaced because a look failed.
bool mayExist(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

}  // namespace

std::string_view lastPathComponent(std::string_view path) {
    const auto last = path.find_last_not_of('/');
    if (last == std::string_view::npos) {
        return path.substr(0, 1);
    }
    path = path.substr(0, last + 1);
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string_view extensionOf(std::string_view fileName) {
    const auto dot = fileName.rfind('.');
    if (dot == std::string_view::npos || dot == 0) {
        return {};
    }
    const auto extension = fileName.substr(dot + 1);
    return extension.find(' ') == std::string_view::npos ? extension : std::string_view();
}

std::string_view withoutExtension(std::string_view fileName) {
    const auto extension = extensionOf(fileName);
    return extension.empty() ? fileName
                             : fileName.substr(0, fileName.size() - extension.size() - 1);
}

std::string safeName(std::string_view name) {
    auto safe = replacingNonAlphanumerics(name, "-_. ", '_');
    safe.resize(
        prefixOfClusters(safe, maximumCharacters, std::numeric_limits<std::size_t>::max()).size());
    return safe;
}

std::string UniqueNames::candidate(std::string_view base, std::string_view suffix,
                                   std::string_view extension) const {
    const auto room = maximumNameBytes - suffix.size() - 1 - extension.size();
    std::string path = directory_;
    if (path.empty() || path.back() != '/') {
        path += '/';
    }
    path += prefixOfClusters(base, maximumCharacters, room);
    path += suffix;
    path += '.';
    path += extension;
    return path;
}

std::string UniqueNames::uniqueURL(std::string_view base, std::string_view extension) {
    const auto numbered = [&](std::uint64_t number) {
        return candidate(base, number == 1 ? "" : "_" + std::to_string(number), extension);
    };
    return numbered(numbers_.find(1, lastNumber, numbered, mayExist).value_or(1));
}

}  // namespace trellant
