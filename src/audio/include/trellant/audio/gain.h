// SPDX-License-Identifier: Apache-2.0
// How loud a clip is at each moment: fades, automation and pan as factors of its samples.
//
// Neither an OMF file nor the model says by which formula a named curve moves, so these are ours,
// and whoever plays or draws a timeline here uses them. With x from 0 to 1 along the way from value
// a to value b:
//
//   linear       a + (b - a) x
//   constant     a up to the end of the way, b there
//   power        rising: a + (b - a) sin(x pi/2); falling: b + (a - b) cos(x pi/2). From 0 to 1 and
//                from 1 to 0 the squares add up to 1: two sounds that fade over one another keep
//                their power
//   logarithmic  a (b/a)^x: even in decibels. The smaller of both counts as no less than a 1,000th
//                (-60 dB) of the larger between the ends, where it is itself. A way from one sign
//                to the other is linear
//   unsupported  as linear: what exports make of it
//
// A fade-in without points goes from 0 to 1, a fade-out from 1 to 0. Sessions name the curve or the
// nearest shape of the tool, whose own formula may differ a little.
#pragma once

#include <trellant/model/timeline.h>

namespace [[gnu::visibility("default")]] trellant {
namespace audio {

/// The least of a logarithmic way, as a part of its larger end: -60 dB.
inline constexpr double logarithmicFloor = 0.001;

/// The value at `place` (0 to 1, what lies beyond counts as the end) of the way from `from` to
/// `to`.
[[nodiscard]] double valueBetween(const AAFAutomationInterpolation& curve, double from, double to,
                                  double place);

/// The factor at `place` of a fade-in (0 its start, 1 its end), from 0 to 1.
[[nodiscard]] double fadeInGain(const AAFAutomationInterpolation& curve, double place);
/// Of a fade-out: what the fade-in has as far from its end, but for `constant`, which holds 1 up to
/// the end of the fade.
[[nodiscard]] double fadeOutGain(const AAFAutomationInterpolation& curve, double place);

/// The same of a whole fade: its points, where it has any, are the factors along it, and between
/// them its curve holds; `reversesPointTime` counts them from its end. Takes time in proportion to
/// the logarithm of their number. Points must be in time order, as a valid timeline's are.
[[nodiscard]] double fadeInGain(const AAFFade& fade, double place);
[[nodiscard]] double fadeOutGain(const AAFFade& fade, double place);

/// The value of automation at `place` of its owner: before the first point that one's, behind the
/// last one that one's, at a place with several points the last one's; `absent` without points.
/// Points must be in time order.
[[nodiscard]] double valueAt(const AAFAutomationEnvelope& envelope, double place,
                             double absent = 1);

/// The factor of a clip at `place` of it (0 to 1): its own gain times its automation, without its
/// fades and its track; 0 for a muted one.
[[nodiscard]] double clipGain(const AAFClipEvent& clip, double place);

/// What a pan does to a mono signal.
struct PanGains {
    double left = 0;
    double right = 0;
    bool operator==(const PanGains&) const = default;
};

/// `pan` from 0 (left) to 1 (right), what lies beyond counts as the end. Constant power: left is
/// cos(pan pi/2), right sin(pan pi/2), -3 dB each in the middle, where a track without a pan
/// stands. An OMF file does not say which law its mix had.
[[nodiscard]] PanGains panGains(double pan) noexcept;

}  // namespace audio
}  // namespace trellant
