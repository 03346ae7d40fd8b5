// SPDX-License-Identifier: Apache-2.0
#include "json_row.h"

#include <trellant/base/text.h>

#include <cmath>
#include <utility>

namespace trellant::cli {

JsonRow& JsonRow::text(std::string_view name, std::string_view value) {
    key(name);
    string(value);
    return *this;
}

JsonRow& JsonRow::text(std::string_view name, const std::optional<std::string>& value) {
    return value ? text(name, std::string_view(*value)) : null(name);
}

JsonRow& JsonRow::integer(std::string_view name, std::int64_t value) {
    key(name);
    writer_.integer(value);
    return *this;
}

JsonRow& JsonRow::integer(std::string_view name, std::optional<std::int64_t> value) {
    return value ? integer(name, *value) : null(name);
}

JsonRow& JsonRow::number(std::string_view name, double value) {
    if (!std::isfinite(value)) {
        return null(name);
    }
    key(name);
    writer_.number(value);
    return *this;
}

JsonRow& JsonRow::number(std::string_view name, std::optional<double> value) {
    return value ? number(name, *value) : null(name);
}

JsonRow& JsonRow::boolean(std::string_view name, bool value) {
    key(name);
    writer_.boolean(value);
    return *this;
}

JsonRow& JsonRow::null(std::string_view name) {
    key(name);
    // The writer has no null: it goes out beside it, and so does the comma after it.
    writer_.flush();
    sink_.write("null");
    afterNull_ = true;
    return *this;
}

void JsonRow::key(std::string_view name) {
    if (afterNull_) {
        sink_.write(",");
        afterNull_ = false;
    }
    writer_.key(name);
}

void JsonRow::string(std::string_view value) {
    writer_.string(madeValidUTF8(value));
}

void JsonRow::close(void (JsonWriter::*end)()) {
    afterNull_ = false;
    (writer_.*end)();
}

std::string JsonRow::line() {
    close(&JsonWriter::endObject);
    writer_.flush();
    return std::move(sink_.text) + "\n";
}

}  // namespace trellant::cli
