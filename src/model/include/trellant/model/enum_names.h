// SPDX-License-Identifier: Apache-2.0
// The raw values of the timeline's enumerations.
#pragma once

#include <trellant/json/named_enum.h>
#include <trellant/model/timeline.h>

#include <array>
#include <optional>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

template <>
struct EnumNames<AAFStemRole> {
    static constexpr std::array<std::string_view, 5> names{"music", "sounds", "voice", "other",
                                                           "unclassified"};
};

template <>
struct EnumNames<AAFChannelRole> {
    static constexpr std::array<std::string_view, 8> names{
        "mono", "left", "right", "center", "lfe", "leftSurround", "rightSurround", "unknown"};
};

template <>
struct EnumNames<AAFFade::Direction> {
    static constexpr std::array<std::string_view, 3> names{"fadeIn", "fadeOut", "crossfade"};
};

template <>
struct EnumNames<AAFUnsupportedFeature::Severity> {
    static constexpr std::array<std::string_view, 2> names{"informational", "renderAffecting"};
};

/// The case that JSON writes as `text`, or nothing.
[[nodiscard]] inline std::optional<AAFStemRole> stemRole(std::string_view text) noexcept {
    return fromRawValue<AAFStemRole>(text);
}
[[nodiscard]] inline std::optional<AAFChannelRole> channelRole(std::string_view text) noexcept {
    return fromRawValue<AAFChannelRole>(text);
}
[[nodiscard]] inline std::optional<AAFFade::Direction> fadeDirection(
    std::string_view text) noexcept {
    return fromRawValue<AAFFade::Direction>(text);
}
[[nodiscard]] inline std::optional<AAFUnsupportedFeature::Severity> featureSeverity(
    std::string_view text) noexcept {
    return fromRawValue<AAFUnsupportedFeature::Severity>(text);
}

}  // namespace trellant
