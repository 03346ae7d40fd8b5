// SPDX-License-Identifier: Apache-2.0
// The small records among the values of properties.
#pragma once

#include <cstdint>

namespace [[gnu::visibility("default")]] trellant {
namespace aaf {

/// A fraction as it is stored: not reduced, the denominator is not 0.
struct Rational {
    std::int32_t numerator = 0;
    std::int32_t denominator = 1;
    bool operator==(const Rational&) const = default;
};

/// A moment in UTC, to four milliseconds.
struct TimeStamp {
    std::int16_t year = 1970;
    /// 1 to 12.
    std::uint8_t month = 1;
    /// 1 to 31.
    std::uint8_t day = 1;
    std::uint8_t hour = 0;
    std::uint8_t minute = 0;
    std::uint8_t second = 0;
    /// In 1/250 second.
    std::uint8_t fraction = 0;
    bool operator==(const TimeStamp&) const = default;
};

/// The moment this many seconds after 1970-01-01 00:00:00 UTC. Moments before year 1 or after year
/// 9999 give the nearest one within.
[[nodiscard]] TimeStamp timeStampOf(std::int64_t secondsSince1970) noexcept;

/// How ready a release was.
enum class ReleaseType : std::uint8_t {
    unknown = 0,
    released = 1,
    debug = 2,
    patched = 3,
    beta = 4,
    privateBuild = 5,
};

struct ProductVersion {
    std::uint16_t major = 0;
    std::uint16_t minor = 0;
    std::uint16_t tertiary = 0;
    std::uint16_t patchLevel = 0;
    ReleaseType type = ReleaseType::unknown;
    bool operator==(const ProductVersion&) const = default;
};

/// Red, green and blue, each 0 to 65,535.
struct Colour {
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;
    bool operator==(const Colour&) const = default;
};

}  // namespace aaf
}  // namespace trellant
