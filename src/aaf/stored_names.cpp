// SPDX-License-Identifier: Apache-2.0
#include "stored_names.h"

#include <array>
#include <charconv>
#include <cstddef>

namespace trellant::aaf {

namespace {

/// With the zero at the end.
constexpr std::size_t longestName = 32;
/// "{ffffffff}".
constexpr std::size_t longestKey = 10;

void appendHex(std::u16string& name, std::uint32_t value) {
    std::array<char, 8> digits{};
    const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16);
    name.append(digits.data(), written.ptr);
}

/// A name of less than `room` units.
std::u16string nameWithin(std::string_view property, std::uint16_t pid, std::size_t room) {
    std::u16string suffix = u"-";
    appendHex(suffix, pid);
    const std::size_t most = room - 1 - suffix.size();
    std::u16string name;
    if (property.size() <= most) {
        name.assign(property.begin(), property.end());
    } else {
        const std::string_view head = property.substr(0, most / 2);
        const std::string_view tail = property.substr(property.size() - (most - most / 2 - 1));
        name.assign(head.begin(), head.end());
        name += u'-';
        name.append(tail.begin(), tail.end());
    }
    return name + suffix;
}

}  // namespace

std::u16string nameOfOne(std::string_view property, std::uint16_t pid) {
    return nameWithin(property, pid, longestName);
}

std::u16string nameOfMany(std::string_view property, std::uint16_t pid) {
    return nameWithin(property, pid, longestName - longestKey);
}

std::u16string nameOfIndex(std::u16string_view many) {
    return std::u16string(many) + u" index";
}

std::u16string nameOfMember(std::u16string_view many, std::uint32_t key) {
    std::u16string name(many);
    name += u'{';
    appendHex(name, key);
    name += u'}';
    return name;
}

}  // namespace trellant::aaf
