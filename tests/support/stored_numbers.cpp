// SPDX-License-Identifier: Apache-2.0
#include "stored_numbers.h"

#include <trellant/base/text.h>

#include <array>

namespace trellant::testing {

namespace {

/// Where the bytes of the text form stand.
constexpr std::array<std::size_t, 16> places{3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
constexpr std::string_view digits = "0123456789abcdef";

}  // namespace

std::uint64_t storedNumber(ByteView bytes) {
    std::uint64_t value = 0;
    for (std::size_t index = bytes.size(); index-- > 0;) {
        value = value * 256 + std::to_integer<std::uint64_t>(bytes[index]);
    }
    return value;
}

std::vector<std::string> storedTexts(ByteView bytes) {
    std::vector<std::string> texts;
    std::size_t start = 0;
    for (std::size_t index = 0; index + 2 <= bytes.size(); index += 2) {
        if (storedNumber(bytes.subspan(index, 2)) == 0) {
            const auto text = fromUTF16(bytes.subspan(start, index - start), OMFByteOrder::little);
            texts.push_back(text.value_or("(not Unicode)"));
            start = index + 2;
        }
    }
    return start == bytes.size() ? texts : std::vector<std::string>{};
}

std::string storedText(ByteView bytes) {
    const std::vector<std::string> texts = storedTexts(bytes);
    return texts.empty() ? "" : texts.front();
}

std::string textOfAUID(ByteView bytes) {
    std::string text;
    for (std::size_t index = 0; index < places.size(); ++index) {
        if (index == 4 || index == 6 || index == 8 || index == 10) {
            text += '-';
        }
        const auto byte = std::to_integer<unsigned>(bytes[places[index]]);
        text += digits[byte / 16];
        text += digits[byte % 16];
    }
    return text;
}

Bytes storedAUID(std::string_view text) {
    Bytes bytes(16);
    std::size_t at = 0;
    for (const std::size_t place : places) {
        at += text[at] == '-' ? 1U : 0U;
        bytes[place] =
            static_cast<std::byte>(digits.find(text[at]) * 16 + digits.find(text[at + 1]));
        at += 2;
    }
    return bytes;
}

}  // namespace trellant::testing
