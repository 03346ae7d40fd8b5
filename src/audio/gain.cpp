// SPDX-License-Identifier: Apache-2.0
#include <trellant/audio/gain.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <variant>

namespace trellant::audio {

namespace {

using Curve = AAFAutomationInterpolation;
using Points = std::vector<AAFAutomationPoint>;

constexpr double quarterTurn = std::numbers::pi / 2;

double linear(double from, double to, double place) noexcept {
    return from + (to - from) * place;
}

/// Exact at both ends, which multiples of pi are not.
double sineOf(double place) noexcept {
    return place == 1 ? 1 : std::sin(place * quarterTurn);
}
double cosineOf(double place) noexcept {
    return place == 1 ? 0 : std::cos(place * quarterTurn);
}

double power(double from, double to, double place) noexcept {
    return to >= from ? from + (to - from) * sineOf(place) : to + (from - to) * cosineOf(place);
}

double logarithmic(double from, double to, double place) noexcept {
    const bool changesSign = (from < 0 && to > 0) || (from > 0 && to < 0);
    const double larger = std::max(std::fabs(from), std::fabs(to));
    if (changesSign || larger == 0) {
        return linear(from, to, place);
    }
    const double first = std::max(std::fabs(from), larger * logarithmicFloor);
    const double last = std::max(std::fabs(to), larger * logarithmicFloor);
    const double size = first * std::pow(last / first, place);
    return from < 0 || to < 0 ? -size : size;
}

/// Between the ends of the way.
struct ValueWithin {
    double from;
    double to;
    double place;

    double operator()(const Curve::Linear& /*curve*/) const noexcept {
        return linear(from, to, place);
    }
    double operator()(const Curve::Constant& /*curve*/) const noexcept { return from; }
    double operator()(const Curve::Power& /*curve*/) const noexcept {
        return power(from, to, place);
    }
    double operator()(const Curve::Logarithmic& /*curve*/) const noexcept {
        return logarithmic(from, to, place);
    }
    double operator()(const Curve::Unsupported& /*curve*/) const noexcept {
        return linear(from, to, place);
    }
};

double valueAmong(const Points& points, const Curve& curve, double place) {
    const auto next = std::upper_bound(points.begin(), points.end(), place,
                                       [](double wanted, const AAFAutomationPoint& point) {
                                           return wanted < point.timelineOffset.doubleValue();
                                       });
    if (next == points.begin()) {
        return points.front().value;
    }
    if (next == points.end()) {
        return points.back().value;
    }
    const AAFAutomationPoint& before = *std::prev(next);
    const double start = before.timelineOffset.doubleValue();
    const double length = next->timelineOffset.doubleValue() - start;
    return valueBetween(curve, before.value, next->value, (place - start) / length);
}

double shapeAt(const AAFFade& fade, double place) {
    return valueAmong(fade.points, fade.curve,
                      fade.reversesPointTime.value_or(false) ? 1 - place : place);
}

}  // namespace

double valueBetween(const Curve& curve, double from, double to, double place) {
    if (!(place > 0)) {
        return from;
    }
    if (place >= 1) {
        return to;
    }
    return std::visit(ValueWithin{from, to, place}, curve.curve);
}

double fadeInGain(const Curve& curve, double place) {
    return valueBetween(curve, 0, 1, place);
}

double fadeOutGain(const Curve& curve, double place) {
    return valueBetween(curve, 1, 0, place);
}

double fadeInGain(const AAFFade& fade, double place) {
    return fade.points.empty() ? fadeInGain(fade.curve, place) : shapeAt(fade, place);
}

double fadeOutGain(const AAFFade& fade, double place) {
    return fade.points.empty() ? fadeOutGain(fade.curve, place) : shapeAt(fade, place);
}

double valueAt(const AAFAutomationEnvelope& envelope, double place, double absent) {
    return envelope.points.empty() ? absent
                                   : valueAmong(envelope.points, envelope.interpolation, place);
}

double clipGain(const AAFClipEvent& clip, double place) {
    if (clip.clipMuted) {
        return 0;
    }
    return clip.fixedClipGain *
           (clip.clipGainAutomation ? valueAt(*clip.clipGainAutomation, place) : 1);
}

PanGains panGains(double pan) noexcept {
    const double place = pan > 0 ? std::min(pan, 1.0) : 0;
    return {cosineOf(place), sineOf(place)};
}

}  // namespace trellant::audio
