// SPDX-License-Identifier: Apache-2.0
#include "cell_text.h"

#include <trellant/handoff/timeline_text.h>

#include <array>
#include <charconv>
#include <cmath>

namespace trellant::cli {

namespace {

using NumberRoom = std::array<char, JsonWriter::longestNumber>;

std::string_view infinity(double value) {
    return value < 0 ? "-inf" : "inf";
}

}  // namespace

std::string numberText(double value) {
    NumberRoom room;
    return std::string(std::isfinite(value) ? JsonWriter::writeNumber(value, room)
                                            : infinity(value));
}

void TextCell::integer(std::int64_t value) {
    NumberRoom room;
    const char* const end = std::to_chars(room.data(), room.data() + room.size(), value).ptr;
    takeWord({room.data(), static_cast<std::size_t>(end - room.data())});
}

void TextCell::number(double value) {
    if (!std::isfinite(value)) {
        take(infinity(value));
        return;
    }
    NumberRoom room;
    takeWord(JsonWriter::writeNumber(value, room));
}

void TextCell::boolean(bool value) {
    takeWord(value ? "yes" : "no");
}

void TextCell::decibels(double factor) {
    const std::string text = decibelText(factor);
    if (std::isfinite(factor) && factor > 0) {
        takeWord(text);
    } else {
        take(text);
    }
}

void TextCell::fraction(const AAFRational& value) {
    take(fractionText(value));
}

void TextCell::lossNumbers(const std::vector<std::size_t>& numbers) {
    std::string text;
    for (const std::size_t number : numbers) {
        text += (text.empty() ? "" : " ") + std::to_string(number);
    }
    take(text);
}

void TextCell::points(const AAFAutomationEnvelope& envelope) {
    std::string text;
    for (const AAFAutomationPoint& point : envelope.points) {
        text += text.empty() ? "" : " ";
        text += fractionText(point.timelineOffset) + ":" + numberText(point.value);
    }
    take(text);
}

}  // namespace trellant::cli
