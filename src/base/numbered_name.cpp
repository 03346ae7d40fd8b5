// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/numbered_name.h>
#include <trellant/base/text.h>

#include <charconv>
#include <limits>

namespace trellant {

namespace {

/// What common file systems hold in one name.
constexpr std::size_t longestName = 255;

}  // namespace

NumberedName NumberedName::whole(std::string_view name) {
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) {
        return {std::string(name), "", 1};
    }
    return {std::string(name.substr(0, dot)), std::string(name.substr(dot + 1)), 1};
}

NumberedName NumberedName::numbered(std::string_view name) {
    NumberedName parts = whole(name);
    const auto mark = parts.stem.rfind('_');
    if (mark == std::string::npos || mark + 1 == parts.stem.size() || parts.stem[mark + 1] == '0') {
        return parts;
    }
    std::uint64_t number = 0;
    const char* const end = parts.stem.data() + parts.stem.size();
    const auto read = std::from_chars(parts.stem.data() + mark + 1, end, number);
    if (read.ec == std::errc() && read.ptr == end && number >= 2) {
        parts.stem.resize(mark);
        parts.number = number;
    }
    return parts;
}

std::string NumberedName::withNumber(std::uint64_t other) const {
    std::string tail = other == 1 ? "" : "_" + std::to_string(other);
    if (!extension.empty()) {
        tail += "." + extension;
    }
    const std::size_t room = tail.size() < longestName ? longestName - tail.size() : 0;
    return std::string(prefixOfClusters(stem, std::numeric_limits<std::size_t>::max(), room)) +
           tail;
}

}  // namespace trellant
