// SPDX-License-Identifier: Apache-2.0
// Lists for sheets.
#include "listing.h"

#include <trellant/base/precondition.h>
#include <trellant/base/text.h>

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
    return skipAnyOf(text, "=+-@\t");
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

void appendText(std::string& record, const std::string& cell) {
    std::string text = withoutControls(madeValidUTF8(cell));
    if (looksLikeFormula(text)) {
        text.insert(text.begin(), '\'');
    }
    appendQuoted(record, text);
}

bool isNumberByKind(const Value& value) {
    return std::holds_alternative<std::int64_t>(value) || std::holds_alternative<double>(value) ||
           std::holds_alternative<Gain>(value);
}

void appendValue(std::string& record, const Value& value) {
    const std::string text = cellText(value);
    // A gain may be a text after all: "-inf", "-6.02 inverted".
    if (isNumberByKind(value) && isPlainNumber(text)) {
        record += text;
    } else {
        appendText(record, text);
    }
}

void appendFraction(std::string& record, const Value& value) {
    if (const auto* const fraction = std::get_if<Fraction>(&value)) {
        record += std::to_string(fraction->value.numerator());
        record += ',';
        record += std::to_string(fraction->value.denominator());
    } else {
        record += ',';
    }
}

std::vector<std::size_t> columnsForSheets(const Listing& listing) {
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; i < listing.fields.size(); ++i) {
        if (listing.fields[i].audience != Audience::people) {
            chosen.push_back(i);
        }
    }
    return chosen;
}

std::string titleRecord(const Listing& listing, const std::vector<std::size_t>& columns) {
    std::string record;
    for (const std::size_t i : columns) {
        record += i == columns.front() ? "" : ",";
        const std::string title(listing.fields[i].title);
        if (listing.fields[i].isFraction) {
            appendText(record, title + " numerator");
            record += ',';
            appendText(record, title + " denominator");
        } else {
            appendText(record, title);
        }
    }
    return record;
}

}  // namespace

std::string csv(const Listing& listing) {
    const std::vector<std::size_t> columns = columnsForSheets(listing);
    std::string text = titleRecord(listing, columns) + "\r\n";
    for (const std::vector<Value>& row : listing.rows) {
        precondition(row.size() == listing.fields.size(), "a row has a value for each field");
        const std::size_t begin = text.size();
        for (const std::size_t i : columns) {
            text += i == columns.front() ? "" : ",";
            if (listing.fields[i].isFraction) {
                appendFraction(text, row[i]);
            } else {
                appendValue(text, row[i]);
            }
        }
        // A record of one empty cell would be an empty line.
        text += text.size() == begin ? "\"\"\r\n" : "\r\n";
    }
    return text;
}

}  // namespace trellant::cli
