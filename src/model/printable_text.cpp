#include <trellant/model/printable_text.h>

#include <utf8proc.h>

namespace trellant {

std::size_t utf8SequenceLength(std::string_view text) noexcept {
    utf8proc_int32_t scalar = 0;
    // The library takes a length of at most what a signed number holds; four bytes are enough.
    const auto head = text.substr(0, 4);
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(head.data()),
                                         static_cast<utf8proc_ssize_t>(head.size()), &scalar);
    return length > 0 ? static_cast<std::size_t>(length) : 0;
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
