// Enumerations with text raw values. The raw values stand in one table per enumeration, in
// declaration order; they are the form in JSON and are compared exactly, case included.
#pragma once

#include <trellant/model/precondition.h>
#include <trellant/model/timeline.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <type_traits>

namespace [[gnu::visibility("default")]] trellant {

/// The table of `E`: a static member `names`, an array of the raw values in declaration order.
/// The cases of `E` count from 0 without gaps.
template <class E>
struct EnumNames;

template <class E>
concept NamedEnum = std::is_enum_v<E> && requires {
    EnumNames<E>::names.size();
};

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

/// The raw value of a case. A number that is no case is a programming error.
template <NamedEnum E>
[[nodiscard]] std::string_view rawValue(E value) noexcept {
    const auto& names = EnumNames<E>::names;
    const auto position = static_cast<std::size_t>(value);
    precondition(position < names.size(), "enumeration value outside its cases");
    return names[position];
}

/// The case with this raw value, or nothing.
template <NamedEnum E>
[[nodiscard]] std::optional<E> fromRawValue(std::string_view text) noexcept {
    const auto& names = EnumNames<E>::names;
    for (std::size_t position = 0; position < names.size(); ++position) {
        if (names[position] == text) {
            return static_cast<E>(position);
        }
    }
    return std::nullopt;
}

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
