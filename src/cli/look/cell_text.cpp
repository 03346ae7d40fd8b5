// SPDX-License-Identifier: Apache-2.0
#include "cell_text.h"

#include <trellant/handoff/timeline_text.h>

#include <cmath>

namespace trellant::cli {

std::string numberText(double value) {
    if (!std::isfinite(value)) {
        return value < 0 ? "-inf" : "inf";
    }
    StringSink sink;
    JsonWriter writer(sink, JsonWriter::shortBufferSize);
    writer.number(value);
    writer.flush();
    return std::move(sink.text);
}

void TextCell::integer(std::int64_t value) {
    takeNumber(std::to_string(value));
}

void TextCell::number(double value) {
    takeNumber(numberText(value));
}

void TextCell::boolean(bool value) {
    take(value ? "yes" : "no");
}

void TextCell::decibels(double factor) {
    takeNumber(decibelText(factor));
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
