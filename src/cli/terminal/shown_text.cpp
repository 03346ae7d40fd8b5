// SPDX-License-Identifier: Apache-2.0
#include "shown_text.h"

#include "table.h"

#include <trellant/base/printable_text.h>
#include <trellant/base/utf8.h>

#include <utf8proc.h>

#include <algorithm>
#include <cstdint>

namespace trellant::cli {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";
constexpr std::string_view ellipsis = "\xE2\x80\xA6";

/// The scalar at the head of `text`, a sequence of `length` bytes.
std::int32_t scalarOf(std::string_view text, std::size_t length) {
    std::int32_t scalar = 0;
    utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                     static_cast<utf8proc_ssize_t>(length), &scalar);
    return scalar;
}

bool isHarmful(std::int32_t scalar) {
    const bool isSeparator = scalar == 0x2028 || scalar == 0x2029;
    const bool turnsDirection =
        (scalar >= 0x202A && scalar <= 0x202E) || (scalar >= 0x2066 && scalar <= 0x2069);
    return isSeparator || turnsDirection || utf8proc_category(scalar) == UTF8PROC_CATEGORY_CC;
}

/// Bytes of what painted() puts around a text, when `text` begins with it.
std::size_t colourLength(std::string_view text) {
    for (const std::string_view colour :
         {"\x1b[0m", "\x1b[1m", "\x1b[2m", "\x1b[31m", "\x1b[32m", "\x1b[33m"}) {
        if (text.starts_with(colour)) {
            return colour.size();
        }
    }
    return 0;
}

/// Cells of the scalar that a text begins with, and its bytes. A stray byte counts as the
/// replacement that is shown for it.
struct Measure {
    std::size_t cells = 1;
    std::size_t bytes = 1;
    std::int32_t scalar = 0xFFFD;
};

Measure measureHead(std::string_view text) {
    const std::size_t length = utf8SequenceLength(text);
    if (length == 0) {
        return {};
    }
    const std::int32_t scalar = scalarOf(text, length);
    if (isHarmful(scalar)) {
        return {.bytes = length};
    }
    return {static_cast<std::size_t>(utf8proc_charwidth(scalar)), length, scalar};
}

}  // namespace

std::string shownText(std::string_view text) {
    const std::size_t plain = printablePrefixLength(text);
    std::string shown;
    shown.reserve(text.size());
    shown += text.substr(0, plain);
    text.remove_prefix(plain);
    while (!text.empty()) {
        const std::size_t length = utf8SequenceLength(text);
        if (length == 0 || isHarmful(scalarOf(text, length))) {
            shown += replacement;
        } else {
            shown += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return shown;
}

bool isHarmfulText(std::string_view text) {
    text.remove_prefix(printablePrefixLength(text));
    while (!text.empty()) {
        const std::size_t length = utf8SequenceLength(text);
        if (length == 0 || isHarmful(scalarOf(text, length))) {
            return true;
        }
        text.remove_prefix(length);
        text.remove_prefix(printablePrefixLength(text));
    }
    return false;
}

std::string shownLines(std::string text) {
    std::string shown;
    std::size_t begin = 0;
    bool isChanged = false;
    for (std::size_t at = 0; at < text.size();) {
        at += printablePrefixLength(std::string_view(text).substr(at));
        const std::string_view rest = std::string_view(text).substr(at);
        if (rest.empty() || rest.front() == '\n') {
            ++at;
            continue;
        }
        if (const std::size_t colour = colourLength(rest); colour != 0) {
            at += colour;
            continue;
        }
        const std::size_t length = utf8SequenceLength(rest);
        if (length != 0 && !isHarmful(scalarOf(rest, length))) {
            at += length;
            continue;
        }
        isChanged = true;
        shown.append(text, begin, at - begin).append(replacement);
        at += std::max<std::size_t>(length, 1);
        begin = at;
    }
    if (!isChanged) {
        return text;
    }
    return shown.append(text, begin);
}

std::size_t displayWidth(std::string_view text) {
    std::size_t cells = printablePrefixLength(text);
    text.remove_prefix(cells);
    while (!text.empty()) {
        const Measure head = measureHead(text);
        cells += head.cells;
        text.remove_prefix(head.bytes);
    }
    return cells;
}

std::string cutToCells(std::string_view shown, std::size_t cells) {
    if (cells == 0) {
        return {};
    }
    if (shown.size() <= cells && printablePrefixLength(shown) == shown.size()) {
        return std::string(shown);
    }
    utf8proc_int32_t state = 0;
    std::int32_t before = 0;
    std::size_t used = 0;
    std::size_t place = 0;
    // The last boundary of visible characters that leaves a cell for the ellipsis.
    std::size_t cut = 0;
    while (place < shown.size()) {
        const Measure head = measureHead(shown.substr(place));
        const bool isBoundary =
            place == 0 || utf8proc_grapheme_break_stateful(before, head.scalar, &state);
        if (isBoundary && used < cells) {
            cut = place;
        }
        used += head.cells;
        if (used > cells) {
            return std::string(shown.substr(0, cut)).append(ellipsis);
        }
        before = head.scalar;
        place += head.bytes;
    }
    return std::string(shown);
}

}  // namespace trellant::cli
