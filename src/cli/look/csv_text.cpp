// SPDX-License-Identifier: Apache-2.0
#include "csv_text.h"

#include <trellant/base/text.h>
#include <trellant/base/utf8.h>

#include <algorithm>

namespace trellant::cli {

namespace {

/// Where a sheet would begin a cell with a formula, in quotes or not.
bool looksLikeFormula(std::string_view text) {
    const std::size_t head = text.find_first_not_of('"');
    return head != std::string_view::npos &&
           std::string_view("=+-@\t").find(text[head]) != std::string_view::npos;
}

/// With an apostrophe before each formula: at the head, and behind whatever separates cells in a
/// sheet that is set to another separator and so does not see the quotes around this cell.
std::string guarded(std::string_view text) {
    std::string safe;
    safe.reserve(text.size() + 1);
    bool maySplit = true;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (maySplit && looksLikeFormula(text.substr(i))) {
            safe += '\'';
        }
        safe += text[i];
        maySplit = text[i] == ';' || text[i] == '\t' || text[i] == '\n';
    }
    return safe;
}

/// Without what no cell of a sheet can hold. C1 controls are C2 80 to C2 9F in UTF-8.
std::string withoutControls(const std::string& text) {
    constexpr std::string_view replacement = "\xEF\xBF\xBD";
    std::string clean;
    clean.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const bool isC1 =
            byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        const bool isC0 = (byte < 0x20 && byte != '\t' && byte != '\n') || byte == 0x7F;
        if (isC0 || isC1) {
            clean += replacement;
            i += isC1 ? 1 : 0;
        } else {
            clean += text[i];
        }
    }
    return clean;
}

void appendQuoted(std::string& record, std::string_view text) {
    if (text.find_first_of("\",\n") == std::string_view::npos) {
        record += text;
        return;
    }
    record += '"';
    for (const char byte : text) {
        record.append(byte == '"' ? 2 : 1, byte);
    }
    record += '"';
}

/// Letters, digits and the like, which stay as they are: most cells.
bool isHarmless(std::string_view cell) {
    return printablePrefixLength(cell) == cell.size() &&
           std::none_of(cell.begin(), cell.end(),
                        [](char byte) { return byte == '"' || byte == ',' || byte == ';'; }) &&
           !looksLikeFormula(cell);
}

}  // namespace

void appendCsvText(std::string& record, std::string_view cell) {
    if (isHarmless(cell)) {
        record += cell;
        return;
    }
    appendQuoted(record, guarded(withoutControls(madeValidUTF8(cell))));
}

}  // namespace trellant::cli
