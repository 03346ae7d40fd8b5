// SPDX-License-Identifier: Apache-2.0
// What AAF's numbers and texts can hold: each value as a reader of the file gets it back. All of
// these leave alone what they gave once.
#pragma once

#include <trellant/model/timeline.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace trellant::sessions {

/// A fraction as AAF stores it: not reduced, the denominator is above 0.
struct StoredFraction {
    std::int32_t numerator = 0;
    std::int32_t denominator = 1;
    bool operator==(const StoredFraction&) const = default;

    [[nodiscard]] double value() const noexcept {
        return static_cast<double>(numerator) / static_cast<double>(denominator);
    }
};

/// In 1/2^29 below 4 (+12 dB), as other programs write it, and in the smallest lower power of two
/// above. Less than 0 and what is no number become 0, more than 2^31 - 1 becomes just that.
[[nodiscard]] StoredFraction storedGain(double gain) noexcept;
/// 0 left to 1 right, in 1/2^29; what lies outside becomes the nearer end.
[[nodiscard]] StoredFraction storedPan(double pan) noexcept;
/// A part of a whole: exact where both numbers fit 32 bits, else the nearest fraction that does.
/// What lies outside 0 to 1 becomes the nearer end.
[[nodiscard]] StoredFraction storedPlace(const AAFRational& place) noexcept;

[[nodiscard]] double gainAsWritten(double gain) noexcept;
[[nodiscard]] double panAsWritten(double pan) noexcept;
[[nodiscard]] AAFRational placeAsWritten(const AAFRational& place) noexcept;
/// Curves that AAF has no name for become linear.
[[nodiscard]] AAFAutomationInterpolation curveAsWritten(const AAFAutomationInterpolation& curve);
/// Without control characters, broken UTF-8 replaced by U+FFFD, and of 32,766 UTF-16 units at most,
/// cut after a whole character.
[[nodiscard]] std::string nameAsWritten(std::string_view name);

/// A gain and what multiplies it over time.
struct Levels {
    double gain = 1;
    std::optional<AAFAutomationEnvelope> automation{};
    bool operator==(const Levels&) const = default;
};

/// Automation without points goes. Two points of one level beside a gain, neither of them 1,
/// become part of the gain: there are readers that take them for a second gain and drop one.
[[nodiscard]] Levels clipLevelsAsWritten(const Levels& levels);
/// The same, and a gain beside automation becomes part of its points: readers know one level of a
/// track.
[[nodiscard]] Levels trackLevelsAsWritten(const Levels& levels);
/// A pan's automation; absent for one without points.
[[nodiscard]] std::optional<AAFAutomationEnvelope> panAutomationAsWritten(
    const std::optional<AAFAutomationEnvelope>& automation);

}  // namespace trellant::sessions
