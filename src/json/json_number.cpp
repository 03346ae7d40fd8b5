// SPDX-License-Identifier: Apache-2.0
// Exact reading of JSON number texts: decimal digits are never rounded on their way to an integer.
#include <trellant/json/json_value_ops.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <new>
#include <string>

#ifdef __APPLE__
#include <xlocale.h>
#endif

namespace trellant::jsonDecoding {

namespace {

// Exponents saturate here: far beyond any length of text, far from overflow when lengths are added.
constexpr std::int64_t exponentLimit = std::int64_t{1} << 60;

/// (-1)^negative * digits * 10^exponent, where the digits are those of `head` and `tail`, neither
/// beginning nor ending with a zero. No digits: zero.
struct Decimal {
    bool negative = false;
    std::string_view head;
    std::string_view tail;
    std::int64_t exponent = 0;

    [[nodiscard]] bool isZero() const { return head.empty() && tail.empty(); }
    [[nodiscard]] std::int64_t digitCount() const {
        return static_cast<std::int64_t>(head.size() + tail.size());
    }
};

[[nodiscard]] std::int64_t saturatedExponent(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    std::int64_t value = 0;
    for (const char digit : text) {
        value = value < exponentLimit / 10 ? value * 10 + (digit - '0') : exponentLimit;
    }
    return negative ? -value : value;
}

[[nodiscard]] std::string_view withoutLeadingZeros(std::string_view digits) {
    const std::size_t first = digits.find_first_not_of('0');
    return first == std::string_view::npos ? std::string_view{} : digits.substr(first);
}

[[nodiscard]] std::string_view withoutTrailingZeros(std::string_view digits) {
    return digits.substr(0, digits.find_last_not_of('0') + 1);
}

[[nodiscard]] Decimal decimalOf(std::string_view text) {
    Decimal decimal;
    decimal.negative = text.starts_with('-');
    text.remove_prefix(decimal.negative ? 1 : 0);
    const std::size_t mark = text.find_first_of("eE");
    std::string_view digits = text.substr(0, mark);
    if (mark != std::string_view::npos) {
        decimal.exponent = saturatedExponent(text.substr(mark + 1));
    }
    const std::size_t point = digits.find('.');
    decimal.head = digits.substr(0, point);
    if (point != std::string_view::npos) {
        const std::string_view fraction = digits.substr(point + 1);
        decimal.tail = withoutTrailingZeros(fraction);
        decimal.exponent -= static_cast<std::int64_t>(decimal.tail.size());
    }
    if (decimal.tail.empty()) {
        const std::size_t length = decimal.head.size();
        decimal.head = withoutTrailingZeros(decimal.head);
        decimal.exponent += static_cast<std::int64_t>(length - decimal.head.size());
    }
    decimal.head = withoutLeadingZeros(decimal.head);
    if (decimal.head.empty()) {
        decimal.tail = withoutLeadingZeros(decimal.tail);
    }
    return decimal;
}

[[noreturn]] void outOfRange() {
    throw ValueFault{"the number is out of range"};
}

/// Appends a decimal digit on the side of the sign, so that the smallest value fits too.
void appendDigit(std::int64_t& value, int digit, bool negative) {
    if (__builtin_mul_overflow(value, std::int64_t{10}, &value) ||
        __builtin_add_overflow(value, negative ? -digit : digit, &value)) {
        outOfRange();
    }
}

/// Where numbers have a point, whatever locale the host has chosen. Lives as long as the process.
[[nodiscard]] locale_t localeWithPoint() {
    static const locale_t locale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    if (locale == nullptr) {
        throw std::bad_alloc();
    }
    return locale;
}

}  // namespace

std::int64_t JsonNumber::integerValue() const {
    if (integer_) {
        return *integer_;
    }
    const Decimal decimal = decimalOf(text_);
    if (decimal.isZero()) {
        return 0;
    }
    if (decimal.exponent < 0) {
        throw ValueFault{"the number is not whole"};
    }
    if (decimal.digitCount() + decimal.exponent > std::numeric_limits<std::int64_t>::digits10 + 1) {
        outOfRange();
    }
    std::int64_t value = 0;
    for (const std::string_view digits : {decimal.head, decimal.tail}) {
        for (const char digit : digits) {
            appendDigit(value, digit - '0', decimal.negative);
        }
    }
    for (std::int64_t zeros = 0; zeros < decimal.exponent; ++zeros) {
        appendDigit(value, 0, decimal.negative);
    }
    return value;
}

double JsonNumber::doubleValue() const {
    if (integer_) {
        return static_cast<double>(*integer_);
    }
    const double value = ::strtod_l(std::string(text_).c_str(), nullptr, localeWithPoint());
    // What is too small for a double is zero; only what is too large is refused.
    if (std::isinf(value)) {
        outOfRange();
    }
    return value;
}

}  // namespace trellant::jsonDecoding
