// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/printable_text.h>
#include <trellant/base/utf8.h>

namespace trellant {

namespace {

constexpr std::string_view digits = "0123456789abcdef";

}  // namespace

std::string printableText(std::string_view text, std::size_t maxBytes) {
    std::string printable;
    std::size_t shown = 0;
    while (shown < text.size()) {
        const std::string_view rest = text.substr(shown);
        const std::size_t length = utf8SequenceLength(rest);
        const std::size_t taken = length == 0 ? 1 : length;
        if (taken > maxBytes - shown) {
            return printable + "...";
        }
        const unsigned first = static_cast<unsigned char>(rest.front());
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

std::string textOfBytes(std::string_view bytes) {
    std::string text;
    for (std::size_t position = 0; position < bytes.size();) {
        const std::string_view rest = bytes.substr(position);
        const std::size_t length = utf8SequenceLength(rest);
        const unsigned first = static_cast<unsigned char>(rest.front());
        if (length == 0) {
            text.append({'\\', 'x', digits[first >> 4U], digits[first & 15U]});
        } else {
            text.append(rest.substr(0, length));
        }
        position += length == 0 ? 1 : length;
    }
    return text;
}

}  // namespace trellant
