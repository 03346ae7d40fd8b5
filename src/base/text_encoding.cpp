// SPDX-License-Identifier: Apache-2.0
// Encodings: UTF-8 checked and mended, Latin 1 and UTF-16 brought into UTF-8.
#include <trellant/base/text.h>
#include <trellant/base/utf8.h>

#include <cstdint>
#include <cstring>

namespace trellant {

namespace {

/// What a lead byte asks of its sequence: how many bytes, and the range of the second one, which
/// is where overlong forms, surrogates and values beyond U+10FFFF show.
struct LeadByte {
    std::size_t length;
    std::uint8_t secondLow;
    std::uint8_t secondHigh;
};

constexpr LeadByte leadByte(std::uint8_t byte) noexcept {
    if (byte < 0xC2 || byte > 0xF4) {
        return {0, 0, 0};
    }
    if (byte < 0xE0) {
        return {2, 0x80, 0xBF};
    }
    if (byte < 0xF0) {
        const bool overlongPossible = byte == 0xE0;
        const bool surrogatePossible = byte == 0xED;
        return {3, static_cast<std::uint8_t>(overlongPossible ? 0xA0 : 0x80),
                static_cast<std::uint8_t>(surrogatePossible ? 0x9F : 0xBF)};
    }
    return {4, static_cast<std::uint8_t>(byte == 0xF0 ? 0x90 : 0x80),
            static_cast<std::uint8_t>(byte == 0xF4 ? 0x8F : 0xBF)};
}

std::uint8_t byteAt(std::string_view text, std::size_t position) noexcept {
    return static_cast<std::uint8_t>(text[position]);
}

}  // namespace

UTF8Step utf8Step(std::string_view text, std::size_t position) noexcept {
    const std::uint8_t first = byteAt(text, position);
    if (first < 0x80) {
        return {first, 1, true};
    }
    const LeadByte lead = leadByte(first);
    char32_t scalar = first & (0x7FU >> lead.length);
    for (std::size_t index = 1; index < lead.length; ++index) {
        if (position + index >= text.size()) {
            return {U'\uFFFD', index, false};
        }
        const std::uint8_t next = byteAt(text, position + index);
        const std::uint8_t low = index == 1 ? lead.secondLow : 0x80;
        const std::uint8_t high = index == 1 ? lead.secondHigh : 0xBF;
        if (next < low || next > high) {
            return {U'\uFFFD', index, false};
        }
        scalar = (scalar << 6U) | (next & 0x3FU);
    }
    if (lead.length == 0) {
        return {U'\uFFFD', 1, false};
    }
    return {scalar, lead.length, true};
}

void appendUTF8(std::string& text, char32_t scalar) {
    const auto trailing = [&](unsigned shift) {
        text.push_back(static_cast<char>(0x80U | ((scalar >> shift) & 0x3FU)));
    };
    if (scalar < 0x80) {
        text.push_back(static_cast<char>(scalar));
    } else if (scalar < 0x800) {
        text.push_back(static_cast<char>(0xC0U | (scalar >> 6U)));
        trailing(0);
    } else if (scalar < 0x10000) {
        text.push_back(static_cast<char>(0xE0U | (scalar >> 12U)));
        trailing(6);
        trailing(0);
    } else {
        text.push_back(static_cast<char>(0xF0U | (scalar >> 18U)));
        trailing(12);
        trailing(6);
        trailing(0);
    }
}

std::size_t asciiPrefixLength(std::string_view text) noexcept {
    std::size_t position = 0;
    while (text.size() - position >= sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + position, sizeof word);
        if ((word & 0x8080808080808080U) != 0) {
            break;
        }
        position += sizeof word;
    }
    while (position < text.size() && byteAt(text, position) < 0x80) {
        ++position;
    }
    return position;
}

std::size_t printablePrefixLength(std::string_view text) noexcept {
    constexpr std::uint64_t ones = 0x0101010101010101U;
    constexpr std::uint64_t highBits = ones * 0x80;
    std::size_t position = 0;
    while (text.size() - position >= sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + position, sizeof word);
        // Below the blank the subtraction borrows, at DEL the addition reaches the highest bit.
        if (((word - ones * ' ') & highBits) != 0 || ((word | (word + ones)) & highBits) != 0) {
            break;
        }
        position += sizeof word;
    }
    while (position < text.size() && byteAt(text, position) >= ' ' &&
           byteAt(text, position) < 0x7F) {
        ++position;
    }
    return position;
}

bool isValidUTF8(std::string_view text) {
    std::size_t position = asciiPrefixLength(text);
    while (position < text.size()) {
        const UTF8Step step = utf8Step(text, position);
        if (!step.valid) {
            return false;
        }
        position += step.length;
    }
    return true;
}

std::string madeValidUTF8(std::string_view text) {
    if (isValidUTF8(text)) {
        return std::string(text);
    }
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const UTF8Step step = utf8Step(text, position);
        appendUTF8(result, step.scalar);
        position += step.length;
    }
    return result;
}

std::string fromLatin1(ByteView bytes) {
    std::string result;
    result.reserve(bytes.size());
    for (const std::byte byte : bytes) {
        appendUTF8(result, std::to_integer<char32_t>(byte));
    }
    return result;
}

std::optional<std::string> fromUTF16(ByteView bytes, OMFByteOrder order) {
    const std::size_t unitCount = bytes.size() / 2;
    const std::size_t highByte = order == OMFByteOrder::big ? 0 : 1;
    const auto unitAt = [&](std::size_t index) {
        return (std::to_integer<char32_t>(bytes[2 * index + highByte]) << 8U) |
               std::to_integer<char32_t>(bytes[2 * index + 1 - highByte]);
    };
    std::string result;
    result.reserve(unitCount);
    for (std::size_t index = 0; index < unitCount; ++index) {
        char32_t scalar = unitAt(index);
        if (scalar >= 0xD800 && scalar <= 0xDFFF) {
            if (scalar >= 0xDC00 || index + 1 == unitCount) {
                return std::nullopt;
            }
            const char32_t low = unitAt(++index);
            if (low < 0xDC00 || low > 0xDFFF) {
                return std::nullopt;
            }
            scalar = 0x10000 + ((scalar - 0xD800) << 10U) + (low - 0xDC00);
        }
        appendUTF8(result, scalar);
    }
    return result;
}

std::u16string toUTF16(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const UTF8Step step = utf8Step(text, position);
        position += step.length;
        if (step.scalar < 0x10000) {
            result.push_back(static_cast<char16_t>(step.scalar));
        } else {
            const char32_t pair = step.scalar - 0x10000;
            result.push_back(static_cast<char16_t>(0xD800 + (pair >> 10U)));
            result.push_back(static_cast<char16_t>(0xDC00 + (pair & 0x3FFU)));
        }
    }
    return result;
}

}  // namespace trellant
