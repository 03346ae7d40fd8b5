// SPDX-License-Identifier: Apache-2.0
// One line of JSON for a machine, its members in the order in which they are named.
#pragma once

#include <trellant/json/json_writer.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace trellant::cli {

/// Members are named inside an object, values stand alone inside an array. Absent values become
/// null, so that every row of a list has the same members. Texts come from strangers: what is not
/// UTF-8 is replaced.
class JsonRow {
  public:
    JsonRow() : writer_(sink_) { writer_.beginObject(); }

    JsonRow& text(std::string_view name, std::string_view value);
    JsonRow& text(std::string_view name, const std::optional<std::string>& value);
    JsonRow& text(std::string_view name, const std::string& value) {
        return text(name, std::string_view(value));
    }
    JsonRow& text(std::string_view name, const char* value) {
        return text(name, std::string_view(value));
    }
    JsonRow& integer(std::string_view name, std::int64_t value);
    JsonRow& integer(std::string_view name, std::optional<std::int64_t> value);
    /// What is not finite becomes null.
    JsonRow& number(std::string_view name, double value);
    JsonRow& number(std::string_view name, std::optional<double> value);
    JsonRow& boolean(std::string_view name, bool value);
    JsonRow& null(std::string_view name);

    /// The members of a nested object, which `fill(row)` names.
    template <class Fill>
    JsonRow& object(std::string_view name, const Fill& fill) {
        key(name);
        writer_.beginObject();
        fill(*this);
        close(&JsonWriter::endObject);
        return *this;
    }
    /// An array of objects: `fill(row, item)` names the members of each.
    template <class Items, class Fill>
    JsonRow& objects(std::string_view name, const Items& items, const Fill& fill) {
        key(name);
        writer_.beginArray();
        for (const auto& item : items) {
            writer_.beginObject();
            fill(*this, item);
            close(&JsonWriter::endObject);
        }
        close(&JsonWriter::endArray);
        return *this;
    }
    /// An array of texts.
    template <class Texts>
    JsonRow& texts(std::string_view name, const Texts& items) {
        key(name);
        writer_.beginArray();
        for (const auto& item : items) {
            string(item);
        }
        close(&JsonWriter::endArray);
        return *this;
    }

    /// The line with its line feed. Ends the row: nothing may be added to it after.
    [[nodiscard]] std::string line();

  private:
    void key(std::string_view name);
    void string(std::string_view value);
    void close(void (JsonWriter::*end)());

    StringSink sink_;
    JsonWriter writer_;
    /// The member before was a null, of which the writer knows nothing.
    bool afterNull_ = false;
};

}  // namespace trellant::cli
