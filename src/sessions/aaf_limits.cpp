// SPDX-License-Identifier: Apache-2.0
#include "aaf_limits.h"

#include <trellant/base/int128.h>
#include <trellant/exchange/format_limits.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace trellant::sessions {

namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int32_t>::max();
constexpr int finestPower = 29;

StoredFraction inPowersOfTwo(double value) noexcept {
    if (!(value > 0)) {
        return {0, std::int32_t{1} << finestPower};
    }
    for (int power = finestPower; power >= 0; --power) {
        const double scaled = std::round(std::ldexp(value, power));
        if (scaled <= static_cast<double>(largest)) {
            return {static_cast<std::int32_t>(scaled), std::int32_t{1} << power};
        }
    }
    return {static_cast<std::int32_t>(largest), 1};
}

/// A fraction on the way to another one: successive ones lie on either side of it.
struct Convergent {
    std::int64_t numerator;
    std::int64_t denominator;
};

Int128 distance(const Convergent& one, std::int64_t numerator, std::int64_t denominator) {
    const Int128 difference =
        Int128{one.numerator} * denominator - Int128{numerator} * one.denominator;
    return difference < 0 ? -difference : difference;
}

/// The nearest fraction with a denominator of 31 bits, by continued fractions. 0 < numerator <
/// denominator.
Convergent nearestFraction(std::int64_t numerator, std::int64_t denominator) {
    Convergent before{0, 1};
    Convergent last{1, 0};
    std::int64_t dividend = numerator;
    std::int64_t divisor = denominator;
    while (divisor != 0) {
        const std::int64_t quotient = dividend / divisor;
        const std::int64_t room =
            last.denominator == 0 ? quotient : (largest - before.denominator) / last.denominator;
        const std::int64_t steps = std::min(quotient, room);
        const Convergent next{before.numerator + steps * last.numerator,
                              before.denominator + steps * last.denominator};
        if (steps < quotient) {
            // By cross products: the difference of each to the value, both over all denominators.
            const bool isNearer = distance(next, numerator, denominator) * last.denominator <
                                  distance(last, numerator, denominator) * Int128{next.denominator};
            return isNearer ? next : last;
        }
        before = std::exchange(last, next);
        dividend = std::exchange(divisor, dividend % divisor);
    }
    return last;
}

/// The values as they are written, by `valueAsWritten`.
AAFAutomationEnvelope envelopeAsWritten(const AAFAutomationEnvelope& envelope,
                                        double (*valueAsWritten)(double) noexcept) {
    AAFAutomationEnvelope written{.interpolation = curveAsWritten(envelope.interpolation)};
    written.points.reserve(envelope.points.size());
    for (const AAFAutomationPoint& point : envelope.points) {
        written.points.push_back(
            {placeAsWritten(point.timelineOffset), valueAsWritten(point.value)});
    }
    return written;
}

std::optional<AAFAutomationEnvelope> automationAsWritten(
    const std::optional<AAFAutomationEnvelope>& automation,
    double (*valueAsWritten)(double) noexcept) {
    if (!automation || automation->points.empty()) {
        return std::nullopt;
    }
    return envelopeAsWritten(*automation, valueAsWritten);
}

/// Two points of one level, and that level changes something.
bool isLevelLine(const AAFAutomationEnvelope& envelope) {
    return envelope.points.size() == 2 && envelope.points.front().value != 1 &&
           envelope.points.front().value == envelope.points.back().value;
}

}  // namespace

StoredFraction storedGain(double gain) noexcept {
    return inPowersOfTwo(gain);
}

StoredFraction storedPan(double pan) noexcept {
    return inPowersOfTwo(std::min(pan, 1.0));
}

StoredFraction storedPlace(const AAFRational& place) noexcept {
    const std::int64_t numerator = place.numerator();
    const std::int64_t denominator = place.denominator();
    if (numerator <= 0) {
        return {0, 1};
    }
    if (numerator >= denominator) {
        return {1, 1};
    }
    const Convergent stored = denominator <= largest ? Convergent{numerator, denominator}
                                                     : nearestFraction(numerator, denominator);
    return {static_cast<std::int32_t>(stored.numerator),
            static_cast<std::int32_t>(stored.denominator)};
}

double gainAsWritten(double gain) noexcept {
    return storedGain(gain).value();
}

double panAsWritten(double pan) noexcept {
    return storedPan(pan).value();
}

AAFRational placeAsWritten(const AAFRational& place) noexcept {
    const StoredFraction stored = storedPlace(place);
    return AAFRational(stored.numerator, stored.denominator);
}

AAFAutomationInterpolation curveAsWritten(const AAFAutomationInterpolation& curve) {
    return exchange::automationCurveWithin(exchange::ExportFormat::aaf, curve);
}

std::string nameAsWritten(std::string_view name) {
    return exchange::nameWithin(exchange::ExportFormat::aaf, name);
}

Levels clipLevelsAsWritten(const Levels& levels) {
    Levels written{.gain = gainAsWritten(levels.gain),
                   .automation = automationAsWritten(levels.automation, gainAsWritten)};
    if (written.automation && written.gain != 1 && isLevelLine(*written.automation)) {
        written.gain = gainAsWritten(levels.gain * written.automation->points.front().value);
        written.automation.reset();
    }
    return written;
}

Levels trackLevelsAsWritten(const Levels& levels) {
    Levels written = clipLevelsAsWritten(levels);
    if (written.automation && written.gain != 1) {
        for (AAFAutomationPoint& point : written.automation->points) {
            point.value = gainAsWritten(point.value * written.gain);
        }
        written.gain = 1;
    }
    return written;
}

std::optional<AAFAutomationEnvelope> panAutomationAsWritten(
    const std::optional<AAFAutomationEnvelope>& automation) {
    return automationAsWritten(automation, panAsWritten);
}

}  // namespace trellant::sessions
