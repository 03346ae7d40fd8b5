#include "listing.h"

#include "timeline_text.h"

#include <trellant/model/json_writer.h>

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
};

template <class Choose>
Table tableOf(const Listing& listing, const Choose& isWanted) {
    Table table;
    for (const Field& field : listing.fields) {
        if (isWanted(field)) {
            table.columns.push_back({std::string(field.title), field.align, field.mayShrink});
        }
    }
    for (const std::vector<Value>& row : listing.rows) {
        std::vector<std::string> cells;
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (isWanted(listing.fields[i])) {
                cells.push_back(std::visit(CellText{}, row[i]));
            }
        }
        table.rows.push_back(std::move(cells));
    }
    return table;
}

}  // namespace

Table tableForPeople(const Listing& listing, bool everything) {
    return tableOf(listing,
                   [everything](const Field& field) { return everything || field.forPeople; });
}

Table tableForSheets(const Listing& listing) {
    return tableOf(listing, [](const Field&) { return true; });
}

std::string jsonLines(const Listing& listing) {
    StringSink sink;
    for (const std::vector<Value>& row : listing.rows) {
        // One writer a line: it would put a comma between two objects.
        JsonWriter writer(sink);
        writer.beginObject();
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (!std::holds_alternative<std::monostate>(row[i])) {
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
