// SPDX-License-Identifier: Apache-2.0
// The last star that was met takes one more character whenever what follows it does not fit: an
// earlier one need never take more, so there is no other way back.
#include "name_pattern.h"

#include <cstddef>

namespace trellant::check {

namespace {

/// Bytes of the character at the head of `text`, which is not empty.
std::size_t characterAt(std::string_view text) noexcept {
    std::size_t bytes = 1;
    while (bytes < text.size() && (static_cast<unsigned char>(text[bytes]) & 0xC0U) == 0x80U) {
        ++bytes;
    }
    return bytes;
}

}  // namespace

bool fitsPattern(std::string_view name, std::string_view pattern) {
    if (name.size() > longestComparedName) {
        return pattern == "*";
    }
    constexpr auto none = std::string_view::npos;
    std::size_t at = 0;
    std::size_t of = 0;
    std::size_t star = none;
    std::size_t taken = 0;
    while (at < name.size()) {
        if (of < pattern.size() && pattern[of] == '*') {
            star = of++;
            taken = at;
        } else if (of < pattern.size() && pattern[of] == '?') {
            at += characterAt(name.substr(at));
            ++of;
        } else if (of < pattern.size() && pattern[of] == name[at]) {
            ++at;
            ++of;
        } else if (star != none) {
            at = ++taken;
            of = star + 1;
        } else {
            return false;
        }
    }
    while (of < pattern.size() && pattern[of] == '*') {
        ++of;
    }
    return of == pattern.size();
}

}  // namespace trellant::check
