// SPDX-License-Identifier: Apache-2.0
// Records as JSON. Keys come in sorted or in documented order; absent optional fields are left out.
// JSON has no form for infinities and not-a-number: a record that holds one is refused before
// anything is written, so a failing encoding leaves no half a document behind.
//
// Strings must be UTF-8 already: what comes from files is made valid where it is read.
#pragma once

#include <trellant/base/url.h>
#include <trellant/json/json_writer.h>
#include <trellant/json/record_traits.h>

#include <cmath>
#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace [[gnu::visibility("default")]] trellant {

/// A record that JSON cannot carry. what(): cannot encode KEYPATH: the number is not finite
class JsonEncodingError final : public std::exception {
  public:
    explicit JsonEncodingError(std::string keyPath);
    /// "timeline.events[3].fixedClipGain".
    [[nodiscard]] const std::string& keyPath() const noexcept { return keyPath_; }
    [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

  private:
    std::string keyPath_;
    std::string description_;
};

namespace jsonEncoding {

/// Whether a double can lie anywhere in a `T`; spares the search a walk through all that cannot.
template <class T>
[[nodiscard]] constexpr bool mayHoldDouble() {
    if constexpr (Record<T>) {
        return []<std::size_t... I>(std::index_sequence<I...>) {
            return (mayHoldDouble<FieldValue<T, I>>() || ...);
        }
        (std::make_index_sequence<fieldCount<T>>{});
    } else if constexpr (PresenceHolder<T> || Vector<T>) {
        return mayHoldDouble<typename T::value_type>();
    } else if constexpr (TextMap<T>) {
        return mayHoldDouble<typename T::mapped_type>();
    } else {
        return std::is_same_v<T, double>;
    }
}

/// The path from `value` to its first number that is not finite, each step with its separator in
/// front (".events[3].fixedClipGain").
template <class T>
[[nodiscard]] std::optional<std::string> pathOfNonFinite(const T& value) {
    static_assert(!TaggedVariant<T>, "variants hold no numbers");
    std::optional<std::string> found;
    if constexpr (!mayHoldDouble<T>()) {
        return found;
    } else if constexpr (Record<T>) {
        forEachField(value, [&found](std::string_view key, const auto& member) {
            if constexpr (mayHoldDouble<std::remove_cvref_t<decltype(member)>>()) {
                if (!found && (found = pathOfNonFinite(member))) {
                    found->insert(0, std::string(".").append(key));
                }
            }
        });
    } else if constexpr (PresenceHolder<T>) {
        if (value.has_value()) {
            found = pathOfNonFinite(*value);
        }
    } else if constexpr (Vector<T>) {
        for (std::size_t index = 0; index < value.size(); ++index) {
            if ((found = pathOfNonFinite(value[index]))) {
                found->insert(0, "[" + std::to_string(index) + "]");
                break;
            }
        }
    } else if constexpr (TextMap<T>) {
        for (const auto& [key, element] : value) {
            if ((found = pathOfNonFinite(element))) {
                found->insert(0, "." + key);
                break;
            }
        }
    } else if (!std::isfinite(value)) {
        found.emplace();
    }
    return found;
}

template <KeyOrder Order, class T>
void writeValue(JsonWriter& writer, const T& value);

template <KeyOrder Order, Record R, std::size_t Position>
void writeField(JsonWriter& writer, const R& record) {
    constexpr auto entry = std::get<fieldOrder<R, Order>[Position]>(RecordFields<R>::fields);
    const auto& value = record.*(entry.member);
    if constexpr (PresenceHolder<std::remove_cvref_t<decltype(value)>>) {
        if (value.has_value()) {
            writer.plainKey(entry.key);
            writeValue<Order>(writer, *value);
        }
    } else {
        writer.plainKey(entry.key);
        writeValue<Order>(writer, value);
    }
}

template <KeyOrder Order, Record R>
void writeRecord(JsonWriter& writer, const R& record) {
    writer.beginObject();
    [&]<std::size_t... I>(std::index_sequence<I...>) {
        (writeField<Order, R, I>(writer, record), ...);
    }
    (std::make_index_sequence<fieldCount<R>>{});
    writer.endObject();
}

template <KeyOrder Order, TaggedVariant V>
void writeVariant(JsonWriter& writer, const V& value) {
    const auto& cases = value.*(VariantCases<V>::variant);
    writer.beginObject();
    writer.plainKey(VariantCases<V>::names[cases.index()]);
    std::visit([&writer](const auto& payload) { writeRecord<Order>(writer, payload); }, cases);
    writer.endObject();
}

template <KeyOrder Order, PairOfIntegers P>
void writePair(JsonWriter& writer, const P& value) {
    constexpr auto& keys = IntegerPair<P>::keys;
    const auto parts = IntegerPair<P>::parts(value);
    constexpr std::size_t first = Order == KeyOrder::sorted && keys[1] < keys[0] ? 1 : 0;
    writer.beginObject();
    writer.plainKey(keys[first]);
    writer.integer(parts[first]);
    writer.plainKey(keys[1 - first]);
    writer.integer(parts[1 - first]);
    writer.endObject();
}

template <KeyOrder Order, class T>
void writeValue(JsonWriter& writer, const T& value) {
    if constexpr (Record<T>) {
        writeRecord<Order>(writer, value);
    } else if constexpr (TaggedVariant<T>) {
        writeVariant<Order>(writer, value);
    } else if constexpr (NamedEnum<T>) {
        writer.string(rawValue(value));
    } else if constexpr (PairOfIntegers<T>) {
        writePair<Order>(writer, value);
    } else if constexpr (std::is_same_v<T, AAFURL>) {
        writer.string(value.text);
    } else if constexpr (std::is_same_v<T, std::string>) {
        writer.string(value);
    } else if constexpr (std::is_same_v<T, bool>) {
        writer.boolean(value);
    } else if constexpr (std::is_same_v<T, double>) {
        writer.number(value);
    } else if constexpr (Vector<T>) {
        writer.beginArray();
        for (const auto& element : value) {
            writeValue<Order>(writer, element);
        }
        writer.endArray();
    } else if constexpr (TextMap<T>) {
        writer.beginObject();
        for (const auto& [key, element] : value) {
            writer.key(key);
            writeValue<Order>(writer, element);
        }
        writer.endObject();
    } else {
        static_assert(std::is_same_v<T, std::int64_t>);
        writer.integer(value);
    }
}

}  // namespace jsonEncoding

/// The key path of the first number, in documented order, that is not finite
/// ("timeline.events[3].fixedClipGain"); nothing when the record can be encoded.
template <Record R>
[[nodiscard]] std::optional<std::string> findUnencodable(const R& record) {
    std::optional<std::string> path = jsonEncoding::pathOfNonFinite(record);
    if (path) {
        path->erase(0, 1);
    }
    return path;
}

/// Writes the record with the keys of every object in ascending code-point order. Throws
/// JsonEncodingError before the first byte. Does not flush the writer.
template <Record R>
void encodeSorted(JsonWriter& writer, const R& record) {
    if (std::optional<std::string> path = findUnencodable(record)) {
        throw JsonEncodingError(std::move(*path));
    }
    jsonEncoding::writeRecord<KeyOrder::sorted>(writer, record);
}

/// As encodeSorted, with the keys in the documented order of the fields.
template <Record R>
void encodeDeclared(JsonWriter& writer, const R& record) {
    if (std::optional<std::string> path = findUnencodable(record)) {
        throw JsonEncodingError(std::move(*path));
    }
    jsonEncoding::writeRecord<KeyOrder::declared>(writer, record);
}

template <Record R>
[[nodiscard]] std::string sortedJson(const R& record) {
    StringSink sink;
    JsonWriter writer(sink);
    encodeSorted(writer, record);
    writer.flush();
    return std::move(sink.text);
}

template <Record R>
[[nodiscard]] std::string declaredJson(const R& record) {
    StringSink sink;
    JsonWriter writer(sink, JsonWriter::shortBufferSize);
    encodeDeclared(writer, record);
    writer.flush();
    return std::move(sink.text);
}

}  // namespace trellant
