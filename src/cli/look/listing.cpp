// SPDX-License-Identifier: Apache-2.0
#include "listing.h"

#include <trellant/handoff/timeline_text.h>
#include <trellant/json/json_writer.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace trellant::cli {

namespace {

void writeNumber(JsonWriter& writer, double value) {
    if (std::isfinite(value)) {
        writer.number(value);
    } else {
        writer.string(value < 0 ? "-inf" : "inf");
    }
}

struct WriteJson {
    JsonWriter& writer;
    void operator()(std::monostate) const {}
    void operator()(const std::string& text) const { writer.string(text); }
    void operator()(std::int64_t value) const { writer.integer(value); }
    void operator()(double value) const { writeNumber(writer, value); }
    void operator()(bool value) const { writer.boolean(value); }
    void operator()(Gain gain) const {
        writeNumber(writer, 20 * std::log10(std::fabs(gain.factor)));
    }
    void operator()(const Fraction& fraction) const { writer.string(fractionText(fraction.value)); }
};

struct CellText {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(double value) const {
        StringSink sink;
        JsonWriter writer(sink);
        if (!std::isfinite(value)) {
            return value < 0 ? "-inf" : "inf";
        }
        writer.number(value);
        writer.flush();
        return sink.text;
    }
    std::string operator()(bool value) const { return value ? "yes" : "no"; }
    std::string operator()(Gain gain) const { return decibelText(gain.factor); }
    std::string operator()(const Fraction& fraction) const { return fractionText(fraction.value); }
};

bool isNothing(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return std::holds_alternative<std::monostate>(value) || (text != nullptr && text->empty());
}

/// Positions of the columns that a person sees.
std::vector<std::size_t> columnsForPeople(const Listing& listing, bool everything) {
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; i < listing.fields.size(); ++i) {
        const Audience audience = listing.fields[i].audience;
        const bool isMeant = audience == Audience::everyone || audience == Audience::people ||
                             (everything && audience == Audience::details);
        const bool isFilled = everything || std::any_of(listing.rows.begin(), listing.rows.end(),
                                                        [i](const std::vector<Value>& row) {
                                                            return !isNothing(row[i]);
                                                        });
        if (isMeant && isFilled) {
            chosen.push_back(i);
        }
    }
    return chosen;
}

}  // namespace

std::string cellText(const Value& value) {
    return std::visit(CellText{}, value);
}

Table tableForPeople(const Listing& listing, bool everything) {
    const std::vector<std::size_t> chosen = columnsForPeople(listing, everything);
    Table table;
    for (const std::size_t i : chosen) {
        const Field& field = listing.fields[i];
        table.columns.push_back(
            {std::string(field.title), field.align, field.mayShrink, field.rank});
    }
    table.rows.reserve(listing.rows.size());
    for (const std::vector<Value>& row : listing.rows) {
        std::vector<std::string> cells;
        cells.reserve(chosen.size());
        for (const std::size_t i : chosen) {
            cells.push_back(cellText(row[i]));
        }
        table.rows.push_back(std::move(cells));
    }
    return table;
}

std::string jsonLines(const Listing& listing) {
    StringSink sink;
    for (const std::vector<Value>& row : listing.rows) {
        // One writer a line: it would put a comma between two objects.
        JsonWriter writer(sink);
        writer.beginObject();
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (listing.fields[i].audience != Audience::people &&
                !std::holds_alternative<std::monostate>(row[i])) {
                writer.plainKey(listing.fields[i].key);
                std::visit(WriteJson{writer}, row[i]);
            }
        }
        writer.endObject();
        writer.flush();
        sink.text += '\n';
    }
    return std::move(sink.text);
}

}  // namespace trellant::cli
