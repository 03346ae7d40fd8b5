// Tables for sheets.
#include "table.h"

#include <trellant/io/text.h>
#include <trellant/model/precondition.h>

#include <algorithm>

namespace trellant::cli {

namespace {

constexpr std::string_view digits = "0123456789";

/// Takes the digits at the head off `text`; false when there are none.
bool skipDigits(std::string_view& text) {
    const std::size_t count = std::min(text.find_first_not_of(digits), text.size());
    text.remove_prefix(count);
    return count > 0;
}

bool skipAnyOf(std::string_view& text, std::string_view letters) {
    const bool isThere = !text.empty() && letters.find(text.front()) != std::string_view::npos;
    text.remove_prefix(isThere ? 1 : 0);
    return isThere;
}

/// A sign, digits, a fraction, an exponent: what a sheet reads as a number, never as a formula.
bool isPlainNumber(std::string_view text) {
    skipAnyOf(text, "+-");
    if (!skipDigits(text)) {
        return false;
    }
    if (skipAnyOf(text, ".") && !skipDigits(text)) {
        return false;
    }
    if (skipAnyOf(text, "eE")) {
        skipAnyOf(text, "+-");
        if (!skipDigits(text)) {
            return false;
        }
    }
    return text.empty();
}

bool looksLikeFormula(std::string_view text) {
    std::string_view rest = text;
    return skipAnyOf(rest, "=+-@\t\r") && !isPlainNumber(text);
}

/// `needsQuotes`: a record of one empty cell would be an empty line.
void appendCell(std::string& record, const std::string& cell, bool needsQuotes) {
    std::string text = madeValidUTF8(cell);
    if (looksLikeFormula(text)) {
        text.insert(text.begin(), '\'');
    }
    if (!needsQuotes && text.find_first_of("\",\r\n") == std::string::npos) {
        record += text;
        return;
    }
    record += '"';
    for (const char byte : text) {
        record.append(byte == '"' ? 2 : 1, byte);
    }
    record += '"';
}

}  // namespace

std::string csv(const Table& table) {
    std::string text;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        text += i == 0 ? "" : ",";
        appendCell(text, table.columns[i].title, false);
    }
    text += "\r\n";
    for (const auto& row : table.rows) {
        precondition(row.size() == table.columns.size(), "a row has a cell for each column");
        for (std::size_t i = 0; i < row.size(); ++i) {
            text += i == 0 ? "" : ",";
            appendCell(text, row[i], row.size() == 1 && row[i].empty());
        }
        text += "\r\n";
    }
    return text;
}

}  // namespace trellant::cli
