// SPDX-License-Identifier: Apache-2.0
// Values of the object model that are no plain numbers.
#pragma once

#include <trellant/model/rational.h>

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// An object's number in its container. 0 refers to no object.
enum class OMFObject : std::uint32_t { none = 0 };

/// The number, as the container's calls take it.
[[nodiscard]] constexpr std::uint32_t number(OMFObject object) noexcept {
    return static_cast<std::uint32_t>(object);
}

/// Identifies a mob.
struct OMFUID {
    std::uint32_t a = 0;
    std::uint32_t b = 0;
    std::uint32_t c = 0;

    [[nodiscard]] static constexpr OMFUID zero() noexcept { return {}; }
    /// "0000002A-00000001-FFFFFFFF".
    [[nodiscard]] std::string description() const;
    /// By the words in order.
    // The check takes the zero of a defaulted comparison for a pointer.
    // NOLINTNEXTLINE(modernize-use-nullptr)
    auto operator<=>(const OMFUID&) const = default;
};

/// A stored fraction, not reduced; the denominator is never 0.
struct OMFRationalValue {
    std::int32_t numerator = 0;
    std::int32_t denominator = 1;

    /// The reduced fraction.
    [[nodiscard]] AAFRational aaf() const { return AAFRational(numerator, denominator); }
    bool operator==(const OMFRationalValue&) const = default;
};

}  // namespace trellant

/// For sets of a caller's own. The words combine in order; whoever writes a file can choose words
/// that collide, so that maps over what a file holds are ordered instead.
template <>
struct std::hash<trellant::OMFUID> {
    [[nodiscard]] std::size_t operator()(const trellant::OMFUID& uid) const noexcept {
        std::uint64_t mixed = uid.a;
        for (const std::uint32_t word : {uid.b, uid.c}) {
            mixed = (mixed ^ (mixed >> 29U)) * 0x9E3779B97F4A7C15U + word;
        }
        return static_cast<std::size_t>(mixed ^ (mixed >> 32U));
    }
};
