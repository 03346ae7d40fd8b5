// SPDX-License-Identifier: Apache-2.0
// Enumerations with text raw values. The raw values stand in one table per enumeration, in
// declaration order; they are the form in JSON and are compared exactly, case included.
#pragma once

#include <trellant/base/precondition.h>

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

}  // namespace trellant
