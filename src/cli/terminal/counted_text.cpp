// SPDX-License-Identifier: Apache-2.0
#include "counted_text.h"

#include <array>
#include <cstddef>

namespace trellant::cli {

std::string countedText(std::uint64_t count) {
    const std::string digits = std::to_string(count);
    std::string text;
    for (std::size_t at = 0; at < digits.size(); ++at) {
        if (at > 0 && (digits.size() - at) % 3 == 0) {
            text += ',';
        }
        text += digits[at];
    }
    return text;
}

std::string counted(std::uint64_t count, std::string_view one, std::string_view several) {
    return std::to_string(count) + " " + std::string(count == 1 ? one : several);
}

std::string bytesText(std::uint64_t bytes) {
    constexpr std::array<std::string_view, 6> units{"kB", "MB", "GB", "TB", "PB", "EB"};
    constexpr std::uint64_t step = 1'000;
    if (bytes < step) {
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    }
    std::uint64_t unit = step;
    std::size_t power = 0;
    while (power + 1 < units.size() && bytes / unit >= step) {
        unit *= step;
        ++power;
    }
    const std::uint64_t tenths = bytes / (unit / 10);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " " +
           std::string(units.at(power));
}

}  // namespace trellant::cli
