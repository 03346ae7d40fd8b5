// SPDX-License-Identifier: Apache-2.0
#include "bar_line.h"

#include "shown_text.h"
#include "table.h"

#include <algorithm>

namespace trellant::cli {

namespace {

constexpr std::size_t narrowest = 24;
constexpr std::size_t shortestBar = 10;
constexpr std::size_t longestBar = 40;
/// "[" and "]", a blank and "100%".
constexpr std::size_t aroundBar = 7;
constexpr std::size_t gap = 2;

double clamped(double fraction) {
    // Not std::clamp: what is no number must become 0.
    return fraction > 0.0 ? std::min(fraction, 1.0) : 0.0;
}

std::string percentText(double fraction) {
    const std::string number = std::to_string(static_cast<int>(fraction * 100.0)) + "%";
    return std::string(4 - number.size(), ' ') + number;
}

std::string barText(double fraction, std::size_t cells) {
    const auto filled = static_cast<std::size_t>(fraction * static_cast<double>(cells));
    std::string bar(filled, '=');
    if (filled < cells) {
        bar += '>';
        bar.append(cells - filled - 1, ' ');
    }
    return "[" + bar + "]";
}

}  // namespace

std::string barLine(double fraction, std::string_view label, std::size_t columns) {
    const double done = clamped(fraction);
    if (columns < narrowest) {
        return percentText(done);
    }
    const std::size_t room = columns - 1 - aroundBar;
    const std::string shown = cutToCells(shownText(label), room - shortestBar - gap);
    const std::size_t before = shown.empty() ? 0 : displayWidth(shown) + gap;
    std::string line = shown;
    line.append(before == 0 ? 0 : gap, ' ');
    line += barText(done, std::min(longestBar, room - before));
    return line + " " + percentText(done);
}

}  // namespace trellant::cli
