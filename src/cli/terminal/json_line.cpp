// SPDX-License-Identifier: Apache-2.0
#include "json_line.h"

#include "shown_text.h"

#include <trellant/base/text.h>

#include <array>
#include <charconv>
#include <cmath>

namespace trellant::cli {

JsonLine& JsonLine::text(std::string_view name, std::string_view value) {
    writer_.plainKey(name);
    string(value);
    return *this;
}

JsonLine& JsonLine::text(std::string_view name, const std::optional<std::string>& value) {
    return value ? text(name, std::string_view(*value)) : *this;
}

JsonLine& JsonLine::integer(std::string_view name, std::int64_t value) {
    writer_.plainKey(name);
    writer_.integer(value);
    return *this;
}

JsonLine& JsonLine::integer(std::string_view name, std::optional<std::int64_t> value) {
    return value ? integer(name, *value) : *this;
}

JsonLine& JsonLine::count(std::string_view name, std::uint64_t value) {
    writer_.plainKey(name);
    writer_.unsignedInteger(value);
    return *this;
}

JsonLine& JsonLine::number(std::string_view name, double value) {
    if (std::isfinite(value)) {
        writer_.plainKey(name);
        writer_.number(value);
    }
    return *this;
}

JsonLine& JsonLine::number(std::string_view name, std::optional<double> value) {
    return value ? number(name, *value) : *this;
}

JsonLine& JsonLine::boolean(std::string_view name, bool value) {
    writer_.plainKey(name);
    writer_.boolean(value);
    return *this;
}

JsonLine& JsonLine::fraction(std::string_view name, const AAFRational& value) {
    // Two numbers of 64 bits, their signs, an escaped slash.
    std::array<char, 48> text{};
    std::size_t used = 0;
    const auto put = [&text, &used](std::int64_t number) {
        char* const end = std::to_chars(text.data() + used, text.data() + text.size(), number).ptr;
        used = static_cast<std::size_t>(end - text.data());
    };
    put(value.numerator());
    if (value.denominator() != 1) {
        // With the escape that every slash gets.
        text[used++] = '\\';
        text[used++] = '/';
        put(value.denominator());
    }
    writer_.plainKey(name);
    writer_.escapedString({text.data(), used});
    return *this;
}

JsonLine& JsonLine::fraction(std::string_view name, const std::optional<AAFRational>& value) {
    return value ? fraction(name, *value) : *this;
}

void JsonLine::string(std::string_view value) {
    // Escapes say the same to programs, and nothing to a terminal that the line is shown on.
    if (!isHarmfulText(value)) {
        writer_.string(value);
    } else {
        writer_.asciiString(madeValidUTF8(value));
    }
}

void JsonLine::end() {
    writer_.endObject();
    writer_.endLine();
    writer_.flush();
}

}  // namespace trellant::cli
