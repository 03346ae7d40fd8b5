// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/precondition.h>
#include <trellant/base/utf8.h>
#include <trellant/json/json_writer.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>

namespace trellant {

namespace {

// 0: the byte stays as it is; 'u': as \u00xx; else the letter of its short escape.
constexpr std::array<char, 256> escapeLetters = [] {
    std::array<char, 256> letters{};
    for (std::size_t byte = 0; byte < 0x20; ++byte) {
        letters[byte] = 'u';
    }
    letters['\b'] = 'b';
    letters['\t'] = 't';
    letters['\n'] = 'n';
    letters['\f'] = 'f';
    letters['\r'] = 'r';
    letters['"'] = '"';
    letters['\\'] = '\\';
    letters['/'] = '/';
    return letters;
}();

[[nodiscard]] char escapeLetter(char byte) noexcept {
    return escapeLetters[static_cast<unsigned char>(byte)];
}

/// How many bytes at the head of `text` need no escape.
[[nodiscard]] std::size_t plainLength(std::string_view text) noexcept {
    constexpr std::uint64_t ones = 0x0101010101010101U;
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    // The high bit of each byte below `limit` (at most 0x80); bytes from 0x80 on give none.
    const auto below = [](std::uint64_t word, std::uint64_t limit) {
        return (word - ones * limit) & ~word & highBits;
    };
    const auto holds = [&below](std::uint64_t word, char byte) {
        return below(word ^ ones * static_cast<unsigned char>(byte), 1);
    };
    std::size_t at = 0;
    while (text.size() - at >= sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + at, sizeof word);
        if ((below(word, 0x20) | holds(word, '"') | holds(word, '\\') | holds(word, '/')) != 0) {
            break;
        }
        at += sizeof word;
    }
    while (at < text.size() && escapeLetter(text[at]) == 0) {
        ++at;
    }
    return at;
}

/// Plain digits where people write them, an exponent beyond: 0.0001 and 100000, 1e-05 and 1e+16.
/// Left to choose, std::to_chars would give 0.0001 as 1e-04 and 100000 as 1e+05.
[[nodiscard]] std::chars_format formatOf(double value) noexcept {
    constexpr double leastPlain = 1e-4;
    constexpr double leastExponential = 1e16;
    const double size = std::abs(value);
    const bool plain = size == 0 || (size >= leastPlain && size < leastExponential);
    return plain ? std::chars_format::fixed : std::chars_format::scientific;
}

/// The integer that is written as `value` is, where there is one. Minus zero has its sign.
[[nodiscard]] std::optional<std::int64_t> asInteger(double value) noexcept {
    constexpr double endOfExactIntegers = 9'007'199'254'740'992;
    if (!(std::abs(value) < endOfExactIntegers) || (value == 0 && std::signbit(value))) {
        return std::nullopt;
    }
    const auto whole = static_cast<std::int64_t>(value);
    return static_cast<double>(whole) == value ? std::optional(whole) : std::nullopt;
}

}  // namespace

JsonWriter::JsonWriter(JsonSink& sink, std::size_t room)
    : sink_(sink),
      room_(std::max(room, shortBufferSize)),
      // NOLINTNEXTLINE(modernize-avoid-c-arrays): the size is the caller's.
      buffer_(std::make_unique_for_overwrite<char[]>(room_)) {}

void JsonWriter::flush() {
    const std::size_t count = used_;
    used_ = 0;
    if (count > 0) {
        sink_.write({buffer_.get(), count});
    }
}

void JsonWriter::append(std::string_view bytes) {
    if (bytes.size() > room_) {
        flush();
        sink_.write(bytes);
        return;
    }
    bytes.copy(reserve(bytes.size()), bytes.size());
    used_ += bytes.size();
}

void JsonWriter::quoted(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    const std::size_t plain = plainLength(text);
    if (plain == text.size() && plain <= shortBufferSize - 2) {
        shortQuoted(text);
        return;
    }
    put('"');
    std::size_t runStart = 0;
    for (std::size_t at = plain; at < text.size(); ++at) {
        const char letter = escapeLetter(text[at]);
        if (letter == 0) {
            continue;
        }
        append(text.substr(runStart, at - runStart));
        runStart = at + 1;
        if (letter == 'u') {
            const auto bits = static_cast<unsigned char>(text[at]);
            const std::array escape{'\\', 'u', '0', '0', digits[bits >> 4U], digits[bits & 15U]};
            append({escape.data(), escape.size()});
        } else {
            const std::array escape{'\\', letter};
            append({escape.data(), escape.size()});
        }
    }
    append(text.substr(runStart));
    put('"');
}

void JsonWriter::key(std::string_view key) {
    separate();
    quoted(key);
    put(':');
    needsComma_ = false;
}

void JsonWriter::string(std::string_view text) {
    separate();
    quoted(text);
    needsComma_ = true;
}

void JsonWriter::escaped(unsigned unit) {
    constexpr std::string_view digits = "0123456789abcdef";
    const std::array text{'\\',
                          'u',
                          digits[unit >> 12U & 15U],
                          digits[unit >> 8U & 15U],
                          digits[unit >> 4U & 15U],
                          digits[unit & 15U]};
    append({text.data(), text.size()});
}

void JsonWriter::asciiString(std::string_view text) {
    constexpr unsigned firstSupplementary = 0x10000;
    separate();
    put('"');
    for (std::size_t at = 0; at < text.size();) {
        const UTF8Step step = utf8Step(text, at);
        const auto scalar = static_cast<unsigned>(step.scalar);
        const char letter = scalar < 0x80U ? escapeLetter(text[at]) : 'u';
        if (letter == 0 && scalar != 0x7FU) {
            put(text[at]);
        } else if (letter != 0 && letter != 'u') {
            put('\\');
            put(letter);
        } else if (scalar < firstSupplementary) {
            escaped(scalar);
        } else {
            escaped(0xD800U + ((scalar - firstSupplementary) >> 10U));
            escaped(0xDC00U + ((scalar - firstSupplementary) & 0x3FFU));
        }
        at += step.length;
    }
    put('"');
    needsComma_ = true;
}

void JsonWriter::integer(std::int64_t value) {
    separate();
    char* const out = reserve(longestNumber);
    used_ += static_cast<std::size_t>(std::to_chars(out, out + longestNumber, value).ptr - out);
    needsComma_ = true;
}

void JsonWriter::unsignedInteger(std::uint64_t value) {
    separate();
    char* const out = reserve(longestNumber);
    used_ += static_cast<std::size_t>(std::to_chars(out, out + longestNumber, value).ptr - out);
    needsComma_ = true;
}

void JsonWriter::number(double value) {
    precondition(std::isfinite(value), "JSON has no form for numbers that are not finite");
    separate();
    char* const out = reserve(longestNumber);
    used_ += writeNumber(value, std::span<char, longestNumber>(out, longestNumber)).size();
    needsComma_ = true;
}

std::string_view JsonWriter::writeNumber(double value, std::span<char, longestNumber> out) {
    const std::optional<std::int64_t> whole = asInteger(value);
    const auto written =
        whole ? std::to_chars(out.data(), out.data() + out.size(), *whole)
              : std::to_chars(out.data(), out.data() + out.size(), value, formatOf(value));
    return {out.data(), static_cast<std::size_t>(written.ptr - out.data())};
}

void JsonWriter::boolean(bool value) {
    separate();
    append(value ? "true" : "false");
    needsComma_ = true;
}

}  // namespace trellant
