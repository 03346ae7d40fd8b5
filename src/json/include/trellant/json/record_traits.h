// SPDX-License-Identifier: Apache-2.0
// What records are made of. A record has one table of its fields; JSON keys, their order and
// presence, hashing and decoding are all driven by it, so a field is added in one place.
//
// A value of a record is one of these kinds: bool, std::int64_t, double, std::string, AAFURL, a
// pair of integers, a named enumeration, a record, a tagged variant of records, or a std::vector,
// std::map<std::string, ...>, std::optional or Boxed of such. The last two make a field optional.
#pragma once

#include <trellant/base/boxed.h>
#include <trellant/json/named_enum.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <numeric>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// A member of a record and its JSON key. Keys are written as they are: no character of theirs may
/// need an escape.
template <class Owner, class Member>
struct Field {
    using Value = Member;
    std::string_view key;
    Member Owner::*member;
};

template <class Owner, class Member>
[[nodiscard]] constexpr Field<Owner, Member> field(std::string_view key, Member Owner::*member) {
    return {key, member};
}

/// The table of `R`: a static constexpr member `fields`, a tuple of `field(...)` in the documented
/// order. At most 64 fields, keys unique.
template <class R>
struct RecordFields;

template <class T>
concept Record = requires {
    RecordFields<T>::fields;
};

/// The table of a tagged variant `V`: a static constexpr member `variant`, the pointer to its
/// std::variant, and `names`, the case names in the order of the alternatives. Its JSON form is an
/// object with one key, the case's name, whose value is the case's record.
template <class V>
struct VariantCases;

template <class T>
concept TaggedVariant = requires {
    VariantCases<T>::names;
};

template <TaggedVariant V>
using VariantOf = std::remove_cvref_t<decltype(std::declval<V&>().*(VariantCases<V>::variant))>;

/// The table of `P`, a value that is written as an object of two integers and made from both at
/// once: `keys` in the documented order, `parts(value)`, `made(parts)`, and `fault(parts)`: what
/// keeps them from being a value, if anything does.
template <class P>
struct IntegerPair;

/// Why two integers make no value: the position of the one at fault, and the reason for people.
struct IntegerPairFault {
    std::size_t position = 0;
    std::string reason{};
};

template <class T>
concept PairOfIntegers = requires {
    IntegerPair<T>::keys;
};

/// A rule that a record keeps beside the shapes of its fields: a static member `check(record)`,
/// which throws.
template <class R>
struct RecordCheck;

template <class T>
concept CheckedRecord = requires(const T& record) {
    RecordCheck<T>::check(record);
};

template <class T>
inline constexpr bool isPresenceHolder = false;
template <class T>
inline constexpr bool isPresenceHolder<std::optional<T>> = true;
template <class T>
inline constexpr bool isPresenceHolder<Boxed<T>> = true;

template <class T>
inline constexpr bool isVector = false;
template <class T>
inline constexpr bool isVector<std::vector<T>> = true;

template <class T>
inline constexpr bool isTextMap = false;
template <class T>
inline constexpr bool isTextMap<std::map<std::string, T>> = true;

/// Fields that may be absent: std::optional and Boxed.
template <class T>
concept PresenceHolder = isPresenceHolder<T>;
template <class T>
concept Vector = isVector<T>;
template <class T>
concept TextMap = isTextMap<T>;

template <Record R>
inline constexpr std::size_t fieldCount = std::tuple_size_v<decltype(RecordFields<R>::fields)>;

template <Record R, std::size_t I>
using FieldValue =
    typename std::tuple_element_t<I, std::remove_const_t<decltype(RecordFields<R>::fields)>>::Value;

/// The keys of `R` in the documented order.
template <Record R>
inline constexpr auto fieldKeys = std::apply(
    [](const auto&... fields) {
        return std::array<std::string_view, sizeof...(fields)>{fields.key...};
    },
    RecordFields<R>::fields);

enum class KeyOrder {
    /// The documented order of the fields.
    declared,
    /// Ascending code points.
    sorted
};

/// Positions of the fields of `R` in the order in which keys are written.
template <Record R, KeyOrder Order>
inline constexpr auto fieldOrder = [] {
    std::array<std::size_t, fieldCount<R>> order{};
    std::iota(order.begin(), order.end(), std::size_t{0});
    if constexpr (Order == KeyOrder::sorted) {
        std::sort(order.begin(), order.end(), [](std::size_t left, std::size_t right) {
            return fieldKeys<R>[left] < fieldKeys<R>[right];
        });
    }
    return order;
}();

/// Calls `visit(key, value)` for every field, in the documented order.
template <Record R, class Visit>
constexpr void forEachField(const R& record, Visit&& visit) {
    std::apply([&](const auto&... fields) { (visit(fields.key, record.*(fields.member)), ...); },
               RecordFields<R>::fields);
}

}  // namespace trellant
