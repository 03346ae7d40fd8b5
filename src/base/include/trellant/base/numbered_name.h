// SPDX-License-Identifier: Apache-2.0
// Names that differ by a number: "Kick.wav", "Kick_2.wav", "Kick_3.wav".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

struct NumberedName {
    std::string stem;
    /// Without its dot; may be empty.
    std::string extension;
    /// 1: the name without a number.
    std::uint64_t number = 1;
    bool operator==(const NumberedName&) const = default;

    /// The whole of `name` as stem and extension.
    [[nodiscard]] static NumberedName whole(std::string_view name);
    /// `name` taken apart at its number too, when it ends in one ("Kick_2.wav"). Numbers count from
    /// 2 and have no zeros in front.
    [[nodiscard]] static NumberedName numbered(std::string_view name);

    /// The file name, its stem cut between characters so that it fits 255 bytes.
    [[nodiscard]] std::string withNumber(std::uint64_t other) const;
    [[nodiscard]] std::string text() const { return withNumber(number); }
};

}  // namespace trellant
