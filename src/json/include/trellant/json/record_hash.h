// SPDX-License-Identifier: Apache-2.0
// Hashes of records. Values that compare equal have equal hashes; every stored field takes part,
// nested records and lists included, in order.
#pragma once

#include <trellant/base/url.h>
#include <trellant/json/record_traits.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <variant>

namespace [[gnu::visibility("default")]] trellant {

/// Spreads each bit over the whole word (the finaliser of SplitMix64). Different values give
/// different results; 0 gives 0.
[[nodiscard]] constexpr std::uint64_t spreadBits(std::uint64_t value) noexcept {
    value = (value ^ (value >> 30U)) * 0xbf58476d1ce4e5b9U;
    value = (value ^ (value >> 27U)) * 0x94d049bb133111ebU;
    return value ^ (value >> 31U);
}

/// The hash of what `seed` stands for followed by `next`; the order counts. With one of the two
/// fixed, different values of the other give different hashes where std::size_t has 64 bits.
[[nodiscard]] constexpr std::size_t mixedHash(std::size_t seed, std::size_t next) noexcept {
    constexpr std::uint64_t golden = 0x9e3779b97f4a7c15U;
    return static_cast<std::size_t>(spreadBits(spreadBits(seed + golden) + next));
}

template <class T>
[[nodiscard]] std::size_t recordHash(const T& value) noexcept {
    if constexpr (Record<T>) {
        std::size_t seed = fieldCount<T>;
        forEachField(value, [&seed](std::string_view, const auto& member) {
            seed = mixedHash(seed, recordHash(member));
        });
        return seed;
    } else if constexpr (TaggedVariant<T>) {
        const auto& cases = value.*(VariantCases<T>::variant);
        return std::visit(
            [&cases](const auto& payload) { return mixedHash(cases.index(), recordHash(payload)); },
            cases);
    } else if constexpr (PresenceHolder<T>) {
        return value.has_value() ? mixedHash(1, recordHash(*value)) : 0;
    } else if constexpr (Vector<T>) {
        std::size_t seed = value.size();
        for (const auto& element : value) {
            seed = mixedHash(seed, recordHash(element));
        }
        return seed;
    } else if constexpr (TextMap<T>) {
        std::size_t seed = value.size();
        for (const auto& [key, element] : value) {
            seed = mixedHash(mixedHash(seed, recordHash(key)), recordHash(element));
        }
        return seed;
    } else if constexpr (PairOfIntegers<T>) {
        const auto parts = IntegerPair<T>::parts(value);
        return mixedHash(recordHash(parts[0]), recordHash(parts[1]));
    } else if constexpr (std::is_same_v<T, AAFURL>) {
        return recordHash(value.text);
    } else if constexpr (std::is_same_v<T, double>) {
        // The two zeros are equal, so they hash alike.
        return std::hash<double>{}(value == 0 ? 0.0 : value);
    } else {
        return std::hash<T>{}(value);
    }
}

}  // namespace trellant
