// SPDX-License-Identifier: Apache-2.0
// How a decoder that knows no types fills typed values. Each kind of value has one constant table
// of operations (`ValueOps`) made from the field tables; the decoder in json_decode.cpp walks the
// text and calls them. Nothing here is for others than json_decode.
#pragma once

#include <trellant/base/url.h>
#include <trellant/json/record_traits.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace [[gnu::visibility("default")]] trellant {
namespace jsonDecoding {

struct ValueOps;
struct Frame;

/// A place to fill. Without operations the value is ignored.
struct ValueSlot {
    const ValueOps* ops = nullptr;
    void* target = nullptr;
};

/// What is wrong with a value, or with the text as a whole.
enum class Misfit {
    /// No JSON, or a value of the right type that means nothing in its place.
    corrupt,
    missingKey,
    wrongType
};

/// Why a value does not fit its place; the decoder knows the key path.
struct ValueFault {
    std::string reason;
    Misfit misfit = Misfit::corrupt;
};

/// A number as it stands in the text, or as the integer that it is.
class JsonNumber {
  public:
    explicit JsonNumber(std::int64_t value) noexcept : integer_(value) {}
    /// `text` is a number of the JSON grammar and must outlive this object.
    explicit JsonNumber(std::string_view text) noexcept : text_(text) {}

    /// The value, in whatever form it is written (1, 1.0, 1e0). Throws ValueFault when it is not
    /// whole or does not fit.
    [[nodiscard]] std::int64_t integerValue() const;
    /// The nearest double. Throws ValueFault when it is beyond the doubles.
    [[nodiscard]] double doubleValue() const;

  private:
    std::optional<std::int64_t> integer_;
    std::string_view text_;
};

/// A field of a record, its types erased.
struct FieldSlot {
    std::string_view key;
    const ValueOps* ops;
    bool required;
    void* (*access)(void* record);
    /// Back to the default: the second of two equal keys replaces the first.
    void (*reset)(void* record);
    /// The position of the field that follows when keys are sorted, as in most texts; the first one
    /// follows the last.
    std::size_t next;
};

/// What a kind of value takes. An operation that is absent is a JSON type that does not fit.
struct ValueOps {
    /// "a string", for the message about a type that does not fit.
    std::string_view expected;
    /// Optional fields: null empties them, anything else goes to the slot that `unwrap` gives.
    void (*setNull)(void* target) = nullptr;
    ValueSlot (*unwrap)(void* target) = nullptr;

    void (*setBoolean)(void* target, bool value) = nullptr;
    void (*setNumber)(void* target, const JsonNumber& number) = nullptr;
    void (*setString)(void* target, std::string_view text) = nullptr;
    /// The next element of an array.
    ValueSlot (*element)(void* target) = nullptr;
    /// Makes room for so many elements in all, which is a guess: where there is none, it does
    /// nothing.
    void (*expectElements)(void* target, std::size_t count) = nullptr;
    /// The value of a member of an object, and the object's end.
    ValueSlot (*member)(Frame& frame, std::string_view key) = nullptr;
    void (*endObject)(Frame& frame) = nullptr;
    /// Runs after `endObject` when the checks of records were asked for.
    void (*check)(const void* target) = nullptr;
    std::span<const FieldSlot> fields{};
    /// The position of the field that comes first when keys are sorted.
    std::size_t firstField = 0;
};

/// An object or array that is being filled.
struct Frame {
    const ValueOps* ops = nullptr;
    void* target = nullptr;
    bool isArray = false;
    /// Which members were seen, one bit each.
    std::uint64_t seen = 0;
    /// The field of a record to be looked at first.
    std::size_t likelyField = 0;
    /// Where in the object or array the decoder stands, for the key path. The key lives in a table
    /// or in the map that is filled.
    std::optional<std::string_view> key;
    std::size_t index = 0;
    bool inElement = false;
    /// How much text was left when the array began; 0 where its length is not to be guessed.
    std::size_t textLeft = 0;
    /// The parts of a pair, until both are known.
    std::array<std::int64_t, 2> parts{};
};

[[nodiscard]] ValueSlot recordMember(Frame& frame, std::string_view key);
void endRecord(Frame& frame);
[[nodiscard]] ValueSlot pairMember(Frame& frame, std::string_view key,
                                   const std::array<std::string_view, 2>& keys);
/// Throws unless both parts were there.
void endPair(Frame& frame, const std::array<std::string_view, 2>& keys);
/// The fault of an enumeration's raw value that is none of its cases.
[[noreturn]] void unknownRawValue(std::string_view text);

template <class T>
struct OpsOf;

template <class T>
inline constexpr ValueOps valueOps = OpsOf<T>::make();

template <class T>
[[nodiscard]] ValueSlot slotOf(T& target) noexcept {
    return {&valueOps<T>, &target};
}

template <>
struct OpsOf<bool> {
    static constexpr ValueOps make() {
        return {.expected = "a boolean", .setBoolean = [](void* target, bool value) {
                    *static_cast<bool*>(target) = value;
                }};
    }
};

template <>
struct OpsOf<std::int64_t> {
    static constexpr ValueOps make() {
        return {.expected = "an integer", .setNumber = [](void* target, const JsonNumber& number) {
                    *static_cast<std::int64_t*>(target) = number.integerValue();
                }};
    }
};

template <>
struct OpsOf<double> {
    static constexpr ValueOps make() {
        return {.expected = "a number", .setNumber = [](void* target, const JsonNumber& number) {
                    *static_cast<double*>(target) = number.doubleValue();
                }};
    }
};

template <>
struct OpsOf<std::string> {
    static constexpr ValueOps make() {
        return {.expected = "a string", .setString = [](void* target, std::string_view text) {
                    static_cast<std::string*>(target)->assign(text);
                }};
    }
};

template <>
struct OpsOf<AAFURL> {
    static constexpr ValueOps make() {
        return {.expected = "a URL", .setString = [](void* target, std::string_view text) {
                    if (text.empty()) {
                        throw ValueFault{"the URL is empty"};
                    }
                    static_cast<AAFURL*>(target)->text.assign(text);
                }};
    }
};

template <PairOfIntegers P>
struct OpsOf<P> {
    static ValueSlot member(Frame& frame, std::string_view key) {
        return pairMember(frame, key, IntegerPair<P>::keys);
    }

    static void endObject(Frame& frame) {
        endPair(frame, IntegerPair<P>::keys);
        if (std::optional<IntegerPairFault> fault = IntegerPair<P>::fault(frame.parts)) {
            frame.key = IntegerPair<P>::keys[fault->position];
            throw ValueFault{std::move(fault->reason)};
        }
        *static_cast<P*>(frame.target) = IntegerPair<P>::made(frame.parts);
    }

    static constexpr ValueOps make() {
        return {.expected = "an object", .member = member, .endObject = endObject};
    }
};

template <NamedEnum E>
struct OpsOf<E> {
    static constexpr ValueOps make() {
        return {.expected = "a string", .setString = [](void* target, std::string_view text) {
                    const std::optional<E> value = fromRawValue<E>(text);
                    if (!value) {
                        unknownRawValue(text);
                    }
                    *static_cast<E*>(target) = *value;
                }};
    }
};

template <PresenceHolder P>
struct OpsOf<P> {
    static constexpr ValueOps make() {
        return {.expected = valueOps<typename P::value_type>.expected,
                .setNull = [](void* target) { static_cast<P*>(target)->reset(); },
                .unwrap = [](void* target) { return slotOf(static_cast<P*>(target)->emplace()); }};
    }
};

template <Vector V>
struct OpsOf<V> {
    static constexpr ValueOps make() {
        return {
            .expected = "an array",
            .element = [](void* target) { return slotOf(static_cast<V*>(target)->emplace_back()); },
            .expectElements =
                [](void* target, std::size_t count) {
                    try {
                        static_cast<V*>(target)->reserve(count);
                    } catch (const std::exception&) {
                        return;
                    }
                }};
    }
};

template <TextMap M>
struct OpsOf<M> {
    static ValueSlot member(Frame& frame, std::string_view key) {
        auto& entries = *static_cast<M*>(frame.target);
        auto& [name, value] = *entries.try_emplace(std::string(key)).first;
        frame.key = name;
        value = {};
        return slotOf(value);
    }

    static constexpr ValueOps make() {
        return {.expected = "an object", .member = member, .endObject = [](Frame&) {}};
    }
};

/// The position of the field that comes after the one at `position` when keys are sorted.
template <Record R>
[[nodiscard]] constexpr std::size_t sortedFieldAfter(std::size_t position) {
    constexpr auto& order = fieldOrder<R, KeyOrder::sorted>;
    std::size_t rank = 0;
    while (order[rank] != position) {
        ++rank;
    }
    return order[(rank + 1) % order.size()];
}

template <Record R, std::size_t I>
[[nodiscard]] constexpr FieldSlot fieldSlot() {
    using Value = FieldValue<R, I>;
    return {.key = fieldKeys<R>[I],
            .ops = &valueOps<Value>,
            .required = !PresenceHolder<Value>,
            .access = [](void* record) -> void* {
                return &(static_cast<R*>(record)->*std::get<I>(RecordFields<R>::fields).member);
            },
            .reset =
                [](void* record) {
                    static_cast<R*>(record)->*std::get<I>(RecordFields<R>::fields).member = Value{};
                },
            .next = sortedFieldAfter<R>(I)};
}

template <Record R>
inline constexpr auto fieldSlots = []<std::size_t... I>(std::index_sequence<I...>) {
    static_assert(sizeof...(I) <= 64, "a frame has one bit for each field");
    return std::array<FieldSlot, sizeof...(I)>{fieldSlot<R, I>()...};
}
(std::make_index_sequence<fieldCount<R>>{});

template <Record R>
struct OpsOf<R> {
    static constexpr ValueOps make() {
        ValueOps ops{.expected = "an object",
                     .member = recordMember,
                     .endObject = endRecord,
                     .fields = fieldSlots<R>};
        if constexpr (fieldCount < R >> 0) {
            ops.firstField = fieldOrder<R, KeyOrder::sorted>[0];
        }
        if constexpr (CheckedRecord<R>) {
            ops.check = [](const void* target) {
                RecordCheck<R>::check(*static_cast<const R*>(target));
            };
        }
        return ops;
    }
};

/// Makes alternative `position` of the variant the current one and gives its place.
template <class Variant, std::size_t... I>
[[nodiscard]] ValueSlot emplaceAlternative(Variant& variant, std::size_t position,
                                           std::index_sequence<I...>) {
    ValueSlot slot;
    ((I == position ? void(slot = slotOf(variant.template emplace<I>())) : void()), ...);
    return slot;
}

/// An object with exactly one key. Its frame's `seen` has a bit for each case, so that a case
/// listed twice is one key, and two above them for keys that are no case: the first and any further
/// one.
template <TaggedVariant V>
struct OpsOf<V> {
    static constexpr std::size_t caseCount = VariantCases<V>::names.size();
    static_assert(caseCount + 2 <= 64, "a frame has one bit for each case and two more");
    static constexpr std::uint64_t unknownKey = std::uint64_t{1} << caseCount;
    static constexpr std::uint64_t furtherUnknownKey = unknownKey << 1U;

    static ValueSlot member(Frame& frame, std::string_view key) {
        std::size_t position = 0;
        while (position < caseCount && VariantCases<V>::names[position] != key) {
            ++position;
        }
        if (position == caseCount) {
            frame.seen |= (frame.seen & unknownKey) == 0 ? unknownKey : furtherUnknownKey;
            return {};
        }
        frame.seen |= std::uint64_t{1} << position;
        frame.key = VariantCases<V>::names[position];
        auto& variant = static_cast<V*>(frame.target)->*(VariantCases<V>::variant);
        return emplaceAlternative(variant, position, std::make_index_sequence<caseCount>{});
    }

    static void endObject(Frame& frame) {
        if (!std::has_single_bit(frame.seen)) {
            throw ValueFault{"Invalid number of keys found, expected one.", Misfit::wrongType};
        }
        if (frame.seen == unknownKey) {
            throw ValueFault{"the key is none of the known cases"};
        }
    }

    static constexpr ValueOps make() {
        return {.expected = "an object", .member = member, .endObject = endObject};
    }
};

}  // namespace jsonDecoding
}  // namespace trellant
