// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/printable_text.h>
#include <trellant/base/utf8.h>

namespace trellant {

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

}  // namespace trellant
