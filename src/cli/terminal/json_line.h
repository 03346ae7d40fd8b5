// SPDX-License-Identifier: Apache-2.0
// One line of JSON for a program, its members in the order in which they are named. Everything
// that the command writes for programs is written by this.
#pragma once

#include <trellant/json/json_writer.h>
#include <trellant/model/rational.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace trellant::cli {

/// Members are named inside an object, values stand alone inside an array. What is absent is left
/// out, and so is a number that JSON has no form for. Names are plain ASCII. Texts come from
/// strangers: what is not UTF-8 is replaced.
class JsonLine {
  public:
    /// `sink` must outlive the line.
    explicit JsonLine(JsonSink& sink) : writer_(sink, JsonWriter::shortBufferSize) {
        writer_.beginObject();
    }
    /// Begins another line behind one that has ended.
    void begin() { writer_.beginObject(); }

    JsonLine& text(std::string_view name, std::string_view value);
    JsonLine& text(std::string_view name, const std::optional<std::string>& value);
    JsonLine& text(std::string_view name, const std::string& value) {
        return text(name, std::string_view(value));
    }
    JsonLine& text(std::string_view name, const char* value) {
        return text(name, std::string_view(value));
    }
    /// A text that no stranger had a hand in: printable ASCII that needs no escape.
    JsonLine& word(std::string_view name, std::string_view value) {
        writer_.plainKey(name);
        writer_.escapedString(value);
        return *this;
    }
    JsonLine& integer(std::string_view name, std::int64_t value);
    JsonLine& integer(std::string_view name, std::optional<std::int64_t> value);
    /// Counts, and positions that a file claims: the whole range of 64 bits.
    JsonLine& count(std::string_view name, std::uint64_t value);
    JsonLine& number(std::string_view name, double value);
    JsonLine& number(std::string_view name, std::optional<double> value);
    JsonLine& boolean(std::string_view name, bool value);
    /// As a text, "7/2" or "3": no number of JSON is exact.
    JsonLine& fraction(std::string_view name, const AAFRational& value);
    JsonLine& fraction(std::string_view name, const std::optional<AAFRational>& value);

    /// The members of a nested object, which `fill(line)` names.
    template <class Fill>
    JsonLine& object(std::string_view name, const Fill& fill) {
        writer_.plainKey(name);
        writer_.beginObject();
        fill(*this);
        writer_.endObject();
        return *this;
    }
    /// An array of objects: `fill(line, item)` names the members of each.
    template <class Items, class Fill>
    JsonLine& objects(std::string_view name, const Items& items, const Fill& fill) {
        writer_.plainKey(name);
        writer_.beginArray();
        for (const auto& item : items) {
            writer_.beginObject();
            fill(*this, item);
            writer_.endObject();
        }
        writer_.endArray();
        return *this;
    }
    /// An array of texts.
    template <class Texts>
    JsonLine& texts(std::string_view name, const Texts& items) {
        writer_.plainKey(name);
        writer_.beginArray();
        for (const auto& item : items) {
            string(item);
        }
        writer_.endArray();
        return *this;
    }
    /// An array of integers.
    template <class Integers>
    JsonLine& integers(std::string_view name, const Integers& items) {
        writer_.plainKey(name);
        writer_.beginArray();
        for (const auto item : items) {
            writer_.integer(static_cast<std::int64_t>(item));
        }
        writer_.endArray();
        return *this;
    }

    /// Ends the line with its line feed and hands it to the sink; nothing may be added after, but
    /// another line may begin.
    void end();

  private:
    void string(std::string_view value);

    JsonWriter writer_;
};

/// The line whose members `fill(line)` names.
template <class Fill>
[[nodiscard]] std::string jsonLine(const Fill& fill) {
    StringSink sink;
    JsonLine line(sink);
    fill(line);
    line.end();
    return std::move(sink.text);
}

}  // namespace trellant::cli
