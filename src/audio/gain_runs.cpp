// SPDX-License-Identifier: Apache-2.0
#include <trellant/audio/gain.h>
#include <trellant/audio/gain_runs.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <variant>
#include <vector>

namespace trellant::audio {

namespace {

using Curve = AAFAutomationInterpolation;
using Points = std::vector<AAFAutomationPoint>;

struct Multiply {
    void operator()(double& factor, double value) const noexcept { factor *= value; }
};
struct Assign {
    void operator()(double& factor, double value) const noexcept { factor = value; }
};

bool isLinear(const Curve& curve) noexcept {
    return std::holds_alternative<Curve::Linear>(curve.curve) ||
           std::holds_alternative<Curve::Unsupported>(curve.curve);
}

/// Places of a run's samples.
class Places {
  public:
    explicit Places(const OwnerRun& run) noexcept
        : first_(run.first), length_(static_cast<double>(run.ownerLength)) {}

    [[nodiscard]] double operator[](std::size_t i) const noexcept {
        return static_cast<double>(first_ + static_cast<std::int64_t>(i)) / length_;
    }
    /// The first sample from `from` on, and before `end`, that lies at `place` or behind it.
    [[nodiscard]] std::size_t reaching(double place, std::size_t from,
                                       std::size_t end) const noexcept {
        while (from < end) {
            const std::size_t middle = from + (end - from) / 2;
            if ((*this)[middle] >= place) {
                end = middle;
            } else {
                from = middle + 1;
            }
        }
        return from;
    }

  private:
    std::int64_t first_;
    double length_;
};

/// Samples `from` to `end` (exclusive) lie on one way between two points.
template <class Apply>
void applyWay(const Curve& curve, const AAFAutomationPoint& before, const AAFAutomationPoint& next,
              const Places& places, std::span<double> factors, std::size_t from, std::size_t end) {
    const double start = before.timelineOffset.doubleValue();
    const double length = next.timelineOffset.doubleValue() - start;
    const Apply apply;
    if (!isLinear(curve)) {
        for (std::size_t i = from; i < end; ++i) {
            apply(factors[i],
                  valueBetween(curve, before.value, next.value, (places[i] - start) / length));
        }
        return;
    }
    const double rise = next.value - before.value;
    for (std::size_t i = from; i < end; ++i) {
        const double place = (places[i] - start) / length;
        // As valueBetween has its ends.
        const double value = place >= 1 ? next.value : before.value + rise * place;
        apply(factors[i], place > 0 ? value : before.value);
    }
}

template <class Apply>
void applySteady(double value, std::span<double> factors, std::size_t from, std::size_t end) {
    const Apply apply;
    for (std::size_t i = from; i < end; ++i) {
        apply(factors[i], value);
    }
}

/// `points` has at least one.
template <class Apply>
void applyPoints(const Points& points, const Curve& curve, const OwnerRun& run,
                 std::span<double> factors) {
    const Places places(run);
    const std::size_t count = factors.size();
    if (count == 0) {
        return;
    }
    auto next = std::upper_bound(points.begin(), points.end(), places[0],
                                 [](double wanted, const AAFAutomationPoint& point) {
                                     return wanted < point.timelineOffset.doubleValue();
                                 });
    std::size_t done = 0;
    while (done < count && next != points.end()) {
        const std::size_t end = places.reaching(next->timelineOffset.doubleValue(), done, count);
        if (next == points.begin()) {
            applySteady<Apply>(next->value, factors, done, end);
        } else if (end != done) {
            applyWay<Apply>(curve, *std::prev(next), *next, places, factors, done, end);
        }
        done = end;
        ++next;
    }
    applySteady<Apply>(points.back().value, factors, done, count);
}

template <class Gain>
void multiplyByFade(const Curve& curve, const OwnerRun& run, std::span<double> factors, Gain gain) {
    const Places places(run);
    for (std::size_t i = 0; i < factors.size(); ++i) {
        factors[i] *= gain(curve, places[i]);
    }
}

}  // namespace

void multiplyByEnvelope(const AAFAutomationEnvelope& envelope, const OwnerRun& run,
                        std::span<double> factors) {
    if (!envelope.points.empty()) {
        applyPoints<Multiply>(envelope.points, envelope.interpolation, run, factors);
    }
}

void multiplyByFadeIn(const Curve& curve, const Points& shape, const OwnerRun& run,
                      std::span<double> factors) {
    if (!shape.empty()) {
        applyPoints<Multiply>(shape, curve, run, factors);
    } else {
        multiplyByFade(curve, run, factors,
                       [](const Curve& of, double place) { return valueBetween(of, 0, 1, place); });
    }
}

void multiplyByFadeOut(const Curve& curve, const Points& shape, const OwnerRun& run,
                       std::span<double> factors) {
    if (!shape.empty()) {
        applyPoints<Multiply>(shape, curve, run, factors);
    } else {
        multiplyByFade(curve, run, factors,
                       [](const Curve& of, double place) { return valueBetween(of, 1, 0, place); });
    }
}

void fillWithEnvelope(const AAFAutomationEnvelope& envelope, const OwnerRun& run, double absent,
                      std::span<double> values) {
    if (envelope.points.empty()) {
        std::fill(values.begin(), values.end(), absent);
    } else {
        applyPoints<Assign>(envelope.points, envelope.interpolation, run, values);
    }
}

}  // namespace trellant::audio
