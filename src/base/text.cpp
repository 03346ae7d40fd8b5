// SPDX-License-Identifier: Apache-2.0
// Character classes, case and grapheme clusters, by utf8proc's tables. ASCII, which nearly every
// text of a file is, never reaches them.
#include <trellant/base/text.h>
#include <trellant/base/utf8.h>

#include <utf8proc.h>

namespace trellant {

namespace {

utf8proc_category_t categoryOf(char32_t scalar) {
    return utf8proc_category(static_cast<utf8proc_int32_t>(scalar));
}

constexpr char32_t lineSeparator = 0x2028;
constexpr char32_t paragraphSeparator = 0x2029;

constexpr bool isC0OrC1(char32_t scalar) noexcept {
    return scalar < 0x20 || (scalar >= 0x7F && scalar < 0xA0);
}

bool isControl(char32_t scalar) {
    if (scalar < 0x80) {
        return scalar < 0x20 || scalar == 0x7F;
    }
    const utf8proc_category_t category = categoryOf(scalar);
    return category == UTF8PROC_CATEGORY_CC || category == UTF8PROC_CATEGORY_CF;
}

bool isAlphanumeric(char32_t scalar) {
    if (scalar < 0x80) {
        return (scalar >= U'0' && scalar <= U'9') || (scalar >= U'A' && scalar <= U'Z') ||
               (scalar >= U'a' && scalar <= U'z');
    }
    // The library numbers letters, marks and numbers Lu to No without a gap.
    const utf8proc_category_t category = categoryOf(scalar);
    return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO;
}

char asciiLowerCased(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A'))
                                                : character;
}

/// The longest head of `text` of at most `maxBytes` bytes that ends between scalars.
std::string_view scalarPrefix(std::string_view text, std::size_t maxBytes) {
    std::size_t end = 0;
    while (end < text.size()) {
        const std::size_t next = end + utf8Step(text, end).length;
        if (next > maxBytes) {
            break;
        }
        end = next;
    }
    return text.substr(0, end);
}

}  // namespace

std::string trimmedOfControls(std::string_view text) {
    std::size_t begin = text.size();
    std::size_t end = 0;
    for (std::size_t position = 0; position < text.size();) {
        const UTF8Step step = utf8Step(text, position);
        if (!isControl(step.scalar)) {
            begin = begin == text.size() ? position : begin;
            end = position + step.length;
        }
        position += step.length;
    }
    return end == 0 ? std::string() : std::string(text.substr(begin, end - begin));
}

std::string lowerCased(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    const std::size_t ascii = asciiPrefixLength(text);
    for (const char character : text.substr(0, ascii)) {
        result.push_back(asciiLowerCased(character));
    }
    for (std::size_t position = ascii; position < text.size();) {
        const UTF8Step step = utf8Step(text, position);
        if (step.valid) {
            const auto scalar = static_cast<utf8proc_int32_t>(step.scalar);
            appendUTF8(result, static_cast<char32_t>(utf8proc_tolower(scalar)));
        } else {
            result.append(text.substr(position, step.length));
        }
        position += step.length;
    }
    return result;
}

char16_t upperCased(char16_t unit) noexcept {
    if (unit < 0x80) {
        return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - (u'a' - u'A')) : unit;
    }
    // The library gives it a capital that Unicode's simple mapping does not.
    constexpr char16_t sharpS = 0xDF;
    const utf8proc_int32_t upper = utf8proc_toupper(unit);
    return unit == sharpS || upper > 0xFFFF ? unit : static_cast<char16_t>(upper);
}

std::string replacingNonAlphanumerics(std::string_view text, std::string_view kept,
                                      char replacement) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const UTF8Step step = utf8Step(text, position);
        const bool isKept = step.scalar < 0x80 &&
                            kept.find(static_cast<char>(step.scalar)) != std::string_view::npos;
        if (isKept || isAlphanumeric(step.scalar)) {
            result.append(text.substr(position, step.length));
        } else {
            result.push_back(replacement);
        }
        position += step.length;
    }
    return result;
}

std::string_view prefixOfClusters(std::string_view text, std::size_t maxClusters,
                                  std::size_t maxBytes) {
    std::size_t clusters = 0;
    std::size_t boundary = 0;
    utf8proc_int32_t state = 0;
    utf8proc_int32_t previous = 0;
    for (std::size_t position = 0; position < text.size() && maxClusters > 0;) {
        const UTF8Step step = utf8Step(text, position);
        const auto scalar = static_cast<utf8proc_int32_t>(step.scalar);
        if (position > 0 && utf8proc_grapheme_break_stateful(previous, scalar, &state)) {
            ++clusters;
            boundary = position;
            if (clusters == maxClusters) {
                return text.substr(0, boundary);
            }
        }
        position += step.length;
        if (position > maxBytes) {
            return boundary > 0 ? text.substr(0, boundary) : scalarPrefix(text, maxBytes);
        }
        previous = scalar;
    }
    return maxClusters > 0 ? text : text.substr(0, 0);
}

std::string plainLine(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    bool inRun = false;
    for (std::size_t at = 0; at < text.size();) {
        const UTF8Step step = utf8Step(text, at);
        const bool isReplaced =
            step.valid && (isC0OrC1(step.scalar) || step.scalar == lineSeparator ||
                           step.scalar == paragraphSeparator);
        if (!isReplaced) {
            line += text.substr(at, step.length);
        } else if (!inRun) {
            line += ' ';
        }
        inRun = isReplaced;
        at += step.length;
    }
    return line;
}

}  // namespace trellant
