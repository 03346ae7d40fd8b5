// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/precondition.h>
#include <trellant/model/rational.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

namespace trellant {

namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
// 2^63, the first double beyond the 64-bit integers.
constexpr double beyondInt64 = 9223372036854775808.0;

[[nodiscard]] std::uint64_t magnitude(std::int64_t value) noexcept {
    const auto bits = static_cast<std::uint64_t>(value);
    return value < 0 ? std::uint64_t{0} - bits : bits;
}

/// At least 1, and capped at the largest 64-bit value so that it is a divisor of signed numbers.
[[nodiscard]] std::int64_t commonDivisor(std::int64_t left, std::int64_t right) noexcept {
    if (left == 1 || right == 1) {
        return 1;
    }
    const std::uint64_t divisor = std::gcd(magnitude(left), magnitude(right));
    return static_cast<std::int64_t>(
        std::clamp<std::uint64_t>(divisor, 1, static_cast<std::uint64_t>(largest)));
}

struct CrossProducts {
    std::int64_t left = 0;
    std::int64_t right = 0;
    bool fit = false;
};

/// left.numerator * right.denominator and right.numerator * left.denominator.
[[nodiscard]] CrossProducts crossProducts(const AAFRational& left,
                                          const AAFRational& right) noexcept {
    CrossProducts products;
    const bool leftOverflows =
        __builtin_mul_overflow(left.numerator(), right.denominator(), &products.left);
    const bool rightOverflows =
        __builtin_mul_overflow(right.numerator(), left.denominator(), &products.right);
    products.fit = !leftOverflows && !rightOverflows;
    return products;
}

[[nodiscard]] std::int64_t saturatedInt64(double whole) noexcept {
    if (whole >= beyondInt64) {
        return largest;
    }
    if (whole <= -beyondInt64) {
        return smallest;
    }
    return static_cast<std::int64_t>(whole);
}

}  // namespace

AAFRational::AAFRational(std::int64_t numerator, std::int64_t denominator) noexcept {
    precondition(denominator != 0, "AAFRational denominator must not be zero");
    if (numerator == 0) {
        return;
    }
    if (denominator < 0) {
        // The one value that has no negation gives way to its nearest neighbour.
        numerator = numerator == smallest ? largest : -numerator;
        denominator = denominator == smallest ? largest : -denominator;
    }
    const std::int64_t divisor = commonDivisor(numerator, denominator);
    numerator_ = numerator / divisor;
    denominator_ = denominator / divisor;
}

AAFRational AAFRational::approximation(double value) noexcept {
    if (std::isnan(value)) {
        return zero();
    }
    if (value >= beyondInt64 || value <= -beyondInt64) {
        return AAFRational(saturatedInt64(value));
    }
    for (const std::int64_t scale : {1000000, 100000, 10000, 1000, 100, 10, 1}) {
        const double scaled = std::round(value * static_cast<double>(scale));
        if (std::abs(scaled) < beyondInt64) {
            return AAFRational(static_cast<std::int64_t>(scaled), scale);
        }
    }
    return AAFRational(value < 0 ? smallest : largest);
}

double AAFRational::doubleValue() const noexcept {
    return static_cast<double>(numerator_) / static_cast<double>(denominator_);
}

std::string AAFRational::description() const {
    return std::to_string(numerator_) + "/" + std::to_string(denominator_);
}

std::int64_t AAFRational::roundedInt64() const noexcept {
    return saturatedInt64(std::round(doubleValue()));
}

AAFRational operator+(const AAFRational& left, const AAFRational& right) noexcept {
    const CrossProducts products = crossProducts(left, right);
    std::int64_t sum = 0;
    std::int64_t denominator = 0;
    if (products.fit && !__builtin_add_overflow(products.left, products.right, &sum) &&
        !__builtin_mul_overflow(left.denominator(), right.denominator(), &denominator)) {
        return AAFRational(sum, denominator);
    }
    return AAFRational::approximation(left.doubleValue() + right.doubleValue());
}

AAFRational operator-(const AAFRational& left, const AAFRational& right) noexcept {
    const CrossProducts products = crossProducts(left, right);
    std::int64_t difference = 0;
    std::int64_t denominator = 0;
    if (products.fit && !__builtin_sub_overflow(products.left, products.right, &difference) &&
        !__builtin_mul_overflow(left.denominator(), right.denominator(), &denominator)) {
        return AAFRational(difference, denominator);
    }
    return AAFRational::approximation(left.doubleValue() - right.doubleValue());
}

AAFRational operator*(const AAFRational& left, const AAFRational& right) noexcept {
    const std::int64_t leftDivisor = commonDivisor(left.numerator(), right.denominator());
    const std::int64_t rightDivisor = commonDivisor(right.numerator(), left.denominator());
    std::int64_t numerator = 0;
    std::int64_t denominator = 0;
    if (!__builtin_mul_overflow(left.numerator() / leftDivisor, right.numerator() / rightDivisor,
                                &numerator) &&
        !__builtin_mul_overflow(left.denominator() / rightDivisor,
                                right.denominator() / leftDivisor, &denominator)) {
        return AAFRational(numerator, denominator);
    }
    return AAFRational::approximation(left.doubleValue() * right.doubleValue());
}

AAFRational operator/(const AAFRational& left, const AAFRational& right) noexcept {
    precondition(right.numerator() != 0, "AAFRational division by zero");
    return left * AAFRational(right.denominator(), right.numerator());
}

std::weak_ordering operator<=>(const AAFRational& left, const AAFRational& right) noexcept {
    const CrossProducts products = crossProducts(left, right);
    if (products.fit) {
        return products.left <=> products.right;
    }
    const double leftValue = left.doubleValue();
    const double rightValue = right.doubleValue();
    if (leftValue < rightValue) {
        return std::weak_ordering::less;
    }
    return rightValue < leftValue ? std::weak_ordering::greater : std::weak_ordering::equivalent;
}

}  // namespace trellant
