// Well-formed UTF-8:
//   first    second   others   scalars
//   00..7F                     U+0000..U+007F
//   C2..DF   80..BF            U+0080..U+07FF
//   E0       A0..BF   80..BF   U+0800..U+0FFF
//   E1..EF   80..BF   80..BF   U+1000..U+FFFF (ED: second 80..9F, no surrogates)
//   F0       90..BF   80..BF   U+10000..U+3FFFF
//   F1..F4   80..BF   80..BF   U+40000..U+10FFFF (F4: second 80..8F)
#include <trellant/model/printable_text.h>

namespace trellant {

namespace {

struct Shape {
    std::size_t length;
    unsigned secondLow;
    unsigned secondHigh;
};

[[nodiscard]] Shape shapeOf(unsigned first) noexcept {
    if (first >= 0xC2U && first <= 0xDFU) {
        return {2, 0x80U, 0xBFU};
    }
    if (first >= 0xE0U && first <= 0xEFU) {
        return {3, first == 0xE0U ? 0xA0U : 0x80U, first == 0xEDU ? 0x9FU : 0xBFU};
    }
    if (first >= 0xF0U && first <= 0xF4U) {
        return {4, first == 0xF0U ? 0x90U : 0x80U, first == 0xF4U ? 0x8FU : 0xBFU};
    }
    return {0, 0, 0};
}

[[nodiscard]] unsigned byteAt(std::string_view text, std::size_t at) noexcept {
    return static_cast<unsigned char>(text[at]);
}

}  // namespace

std::size_t utf8SequenceLength(std::string_view text) noexcept {
    if (text.empty()) {
        return 0;
    }
    if (byteAt(text, 0) < 0x80U) {
        return 1;
    }
    const Shape shape = shapeOf(byteAt(text, 0));
    if (shape.length == 0 || text.size() < shape.length || byteAt(text, 1) < shape.secondLow ||
        byteAt(text, 1) > shape.secondHigh) {
        return 0;
    }
    for (std::size_t at = 2; at < shape.length; ++at) {
        if ((byteAt(text, at) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    return shape.length;
}

bool isWellFormedText(std::string_view text) noexcept {
    while (!text.empty()) {
        const std::size_t length = utf8SequenceLength(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::string printableText(std::string_view text, std::size_t maxBytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string printable;
    std::size_t shown = 0;
    while (shown < text.size()) {
        const std::string_view rest = text.substr(shown);
        const std::size_t length = utf8SequenceLength(rest);
        const std::size_t taken = length == 0 ? 1 : length;
        if (taken > maxBytes - shown) {
            return printable + "...";
        }
        const unsigned first = byteAt(rest, 0);
        if (length == 0) {
            printable.append("\xEF\xBF\xBD");
        } else if (first < 0x20U || first == 0x7FU) {
            printable.append({'\\', 'u', '0', '0', digits[first >> 4U], digits[first & 15U]});
        } else {
            printable.append(rest.substr(0, length));
        }
        shown += taken;
    }
    return printable;
}

}  // namespace trellant
