// SPDX-License-Identifier: Apache-2.0
#include "quoted_text.h"

#include <trellant/base/byte_load.h>
#include <trellant/base/utf8.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace trellant::jsonDecoding {

namespace {

constexpr char32_t firstHighSurrogate = 0xD800;
constexpr char32_t firstLowSurrogate = 0xDC00;
constexpr char32_t surrogatesOfAKind = 0x400;
constexpr char32_t firstScalarOfPairs = 0x10000;

constexpr std::uint64_t everyByte(std::uint8_t byte) noexcept {
    return 0x0101010101010101U * byte;
}

/// Marks by its highest bit each byte that is a quote, a backslash, a control character or beyond
/// ASCII. Only the lowest mark counts: subtractions borrow, so bytes above it may be marked too.
constexpr std::uint64_t markedSpecials(std::uint64_t word) noexcept {
    const std::uint64_t quotes = (word ^ everyByte('"')) - everyByte(1);
    const std::uint64_t backslashes = (word ^ everyByte('\\')) - everyByte(1);
    const std::uint64_t controls = word - everyByte(' ');
    return (quotes | backslashes | controls | word) & everyByte(0x80);
}

constexpr bool isSpecial(char byte) noexcept {
    return byte == '"' || byte == '\\' || static_cast<unsigned char>(byte) < ' ' ||
           static_cast<unsigned char>(byte) >= 0x80;
}

/// How many bytes at the head of `text` stand for themselves.
std::size_t plainLength(std::string_view text) noexcept {
    const std::byte* const bytes = std::as_bytes(std::span(text)).data();
    std::size_t length = 0;
    while (text.size() - length >= sizeof(std::uint64_t)) {
        const auto word = loadUnsigned<std::uint64_t>(bytes + length, OMFByteOrder::little);
        const std::uint64_t specials = markedSpecials(word);
        if (specials != 0) {
            return length + static_cast<std::size_t>(std::countr_zero(specials)) / 8;
        }
        length += sizeof word;
    }
    while (length < text.size() && !isSpecial(text[length])) {
        ++length;
    }
    return length;
}

/// The UTF-16 unit of four hexadecimal digits.
std::optional<char32_t> readUnit(TextCursor& cursor) {
    char32_t unit = 0;
    for (int count = 0; count < 4; ++count) {
        const char digit = cursor.peek();
        if (digit >= '0' && digit <= '9') {
            unit = unit * 16 + static_cast<char32_t>(digit - '0');
        } else if (const char lower = static_cast<char>(digit | 0x20);
                   lower >= 'a' && lower <= 'f') {
            unit = unit * 16 + static_cast<char32_t>(lower - 'a' + 10);
        } else {
            return std::nullopt;
        }
        cursor.skipPeeked();
    }
    return unit;
}

/// The scalar of one unit or of a pair of surrogates; the first unit comes next.
std::optional<char32_t> readScalar(TextCursor& cursor) {
    const std::optional<char32_t> first = readUnit(cursor);
    if (!first || *first < firstHighSurrogate || *first >= firstLowSurrogate + surrogatesOfAKind) {
        return first;
    }
    if (*first >= firstLowSurrogate || cursor.peek() != '\\') {
        return std::nullopt;
    }
    cursor.skipPeeked();
    if (cursor.peek() != 'u') {
        return std::nullopt;
    }
    cursor.skipPeeked();
    const std::optional<char32_t> second = readUnit(cursor);
    if (!second || *second < firstLowSurrogate ||
        *second >= firstLowSurrogate + surrogatesOfAKind) {
        return std::nullopt;
    }
    return firstScalarOfPairs + (*first - firstHighSurrogate) * surrogatesOfAKind +
           (*second - firstLowSurrogate);
}

/// What the letter behind a backslash stands for; nothing where it is none of the short escapes.
constexpr std::optional<char> shortEscape(char letter) noexcept {
    switch (letter) {
        case '"':
        case '\\':
        case '/':
            return letter;
        case 'b':
            return '\b';
        case 'f':
            return '\f';
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        default:
            return std::nullopt;
    }
}

/// Appends what the escape stands for whose backslash comes next; false when it is none.
bool appendEscaped(TextCursor& cursor, std::string& text) {
    cursor.skipPeeked();
    const char letter = cursor.peek();
    if (const std::optional<char> byte = shortEscape(letter)) {
        cursor.skipPeeked();
        text.push_back(*byte);
        return true;
    }
    if (letter != 'u') {
        return false;
    }
    cursor.skipPeeked();
    const std::optional<char32_t> scalar = readScalar(cursor);
    if (scalar) {
        appendUTF8(text, *scalar);
    }
    return scalar.has_value();
}

/// Goes on by one scalar beyond ASCII; false when there is none.
bool skipBeyondAscii(TextCursor& cursor) {
    if (static_cast<unsigned char>(cursor.peek()) < 0x80) {
        return false;
    }
    const std::size_t length = utf8SequenceLength(cursor.rest());
    cursor.skip(length);
    return length > 0;
}

}  // namespace

std::optional<std::string_view> readQuotedText(TextCursor& cursor, std::string& unescaped) {
    cursor.skipPeeked();
    const char* pieceStart = cursor.position();
    bool hasEscapes = false;
    for (;;) {
        cursor.skipRun(plainLength);
        const char byte = cursor.peek();
        const std::string_view piece = cursor.since(pieceStart);
        if (byte == '"') {
            cursor.skipPeeked();
            return hasEscapes ? unescaped.append(piece) : piece;
        }
        if (byte == '\\') {
            if (!hasEscapes) {
                unescaped.clear();
                hasEscapes = true;
            }
            if (!appendEscaped(cursor, unescaped.append(piece))) {
                return std::nullopt;
            }
            pieceStart = cursor.position();
        } else if (!skipBeyondAscii(cursor)) {
            return std::nullopt;
        }
    }
}

}  // namespace trellant::jsonDecoding
