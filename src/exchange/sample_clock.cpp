// SPDX-License-Identifier: Apache-2.0
#include "sample_clock.h"

#include <trellant/base/int128.h>

#include <algorithm>

namespace trellant::exchange {

namespace {

/// `value` is within 64 bits: an error is a fraction below 1 of a denominator that may be larger.
AAFRational fraction(Int128 numerator, Int128 denominator) {
    while (denominator > INT64_MAX) {
        // Far below what a person can tell.
        numerator /= 2;
        denominator /= 2;
    }
    return AAFRational(static_cast<std::int64_t>(numerator),
                       static_cast<std::int64_t>(denominator));
}

}  // namespace

std::optional<Samples> SampleClock::nearest(const AAFRational& seconds, Rounding& rounding) const {
    const Int128 numerator = static_cast<Int128>(seconds.numerator()) * rate_.numerator();
    const Int128 denominator = static_cast<Int128>(seconds.denominator()) * rate_.denominator();
    const bool isNegative = numerator < 0;
    const Int128 size = isNegative ? -numerator : numerator;
    Int128 whole = size / denominator;
    Int128 error = size % denominator;
    // No sum here: twice the rest may not fit.
    if (error >= denominator - error) {
        ++whole;
        error = denominator - error;
    }
    if (whole > mostSamples) {
        return std::nullopt;
    }
    if (error != 0) {
        ++rounding.count;
        rounding.largestError = std::max(rounding.largestError, fraction(error, denominator));
    }
    return static_cast<Samples>(isNegative ? -whole : whole);
}

}  // namespace trellant::exchange
