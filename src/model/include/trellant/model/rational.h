// SPDX-License-Identifier: Apache-2.0
// AAFRational: an exact fraction of two signed 64-bit integers. Every time (in seconds), duration,
// edit rate and sample rate of a timeline is one.
//
// Representation: lowest terms, denominator positive, zero as 0/1. So 6/-4 is held as -3/2, and
// equality of the two fields is equality of the values.
// Overflow: sums, differences and products that do not fit fall back to `approximation(of:)` of
// the double result, which keeps six decimal places. Arithmetic never fails.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

class AAFRational;
// Declared ahead of the class on purpose: a friend declaration does not take on the visibility of
// its namespace, and a shared library would not show them.
AAFRational operator+(const AAFRational& left, const AAFRational& right) noexcept;
AAFRational operator-(const AAFRational& left, const AAFRational& right) noexcept;
AAFRational operator*(const AAFRational& left, const AAFRational& right) noexcept;
AAFRational operator/(const AAFRational& left, const AAFRational& right) noexcept;
std::weak_ordering operator<=>(const AAFRational& left, const AAFRational& right) noexcept;

class AAFRational {
  public:
    /// 0/1.
    constexpr AAFRational() noexcept = default;

    /// The reduced fraction. A zero denominator is a programming error and stops the process.
    /// The smallest 64-bit value cannot be negated; where a sign must flip it becomes the largest
    /// (and smallest over smallest is 1/1).
    explicit AAFRational(std::int64_t numerator, std::int64_t denominator = 1) noexcept;

    [[nodiscard]] static constexpr AAFRational zero() noexcept { return {}; }
    [[nodiscard]] static AAFRational one() noexcept { return AAFRational(1); }

    /// The value rounded (half away from zero) at the first scale of 1000000, 100000, ... 1 at
    /// which it fits 64 bits. Not a number gives 0/1; what lies beyond 64 bits saturates.
    [[nodiscard]] static AAFRational approximation(double value) noexcept;

    /// In lowest terms; carries the sign.
    [[nodiscard]] constexpr std::int64_t numerator() const noexcept { return numerator_; }
    /// At least 1.
    [[nodiscard]] constexpr std::int64_t denominator() const noexcept { return denominator_; }

    /// The nearest double of the quotient of both as doubles.
    [[nodiscard]] double doubleValue() const noexcept;
    /// "30000/1001".
    [[nodiscard]] std::string description() const;
    /// The nearest integer, computed in doubles, halves away from zero, saturating.
    [[nodiscard]] std::int64_t roundedInt64() const noexcept;

    friend AAFRational operator+(const AAFRational& left, const AAFRational& right) noexcept;
    friend AAFRational operator-(const AAFRational& left, const AAFRational& right) noexcept;
    friend AAFRational operator*(const AAFRational& left, const AAFRational& right) noexcept;
    /// Dividing by zero is a programming error and stops the process.
    friend AAFRational operator/(const AAFRational& left, const AAFRational& right) noexcept;

    friend constexpr bool operator==(const AAFRational&, const AAFRational&) noexcept = default;
    /// By value: exact while the cross products fit 64 bits, by doubles beyond.
    friend std::weak_ordering operator<=>(const AAFRational& left,
                                          const AAFRational& right) noexcept;

  private:
    std::int64_t numerator_ = 0;
    std::int64_t denominator_ = 1;
};

}  // namespace trellant
