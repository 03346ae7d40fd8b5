// SPDX-License-Identifier: Apache-2.0
// The identifiers of AAF: AUIDs name classes, properties, types and definitions; MobIDs (basic
// UMIDs of 32 bytes) name mobs and essence.
//
// An AUID is held as it is stored:
//   offset  size  meaning
//        0     4  first group of the text form, little-endian
//        4     2  second group, little-endian
//        6     2  third group, little-endian
//        8     8  fourth and fifth group, byte by byte
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {
namespace aaf {

struct AUID {
    std::array<std::byte, 16> bytes{};

    friend constexpr bool operator==(const AUID&, const AUID&) = default;
    /// In the order of the stored bytes.
    friend constexpr bool operator<(const AUID& left, const AUID& right) noexcept {
        return left.bytes < right.bytes;
    }
};

struct MobID {
    std::array<std::byte, 32> bytes{};

    friend constexpr bool operator==(const MobID&, const MobID&) = default;
    /// In the order of the stored bytes.
    friend constexpr bool operator<(const MobID& left, const MobID& right) noexcept {
        return left.bytes < right.bytes;
    }
};

namespace textForm {

/// Where the bytes of the text form are stored.
inline constexpr std::array<std::size_t, 16> storedPlaces{3, 2, 1,  0,  5,  4,  7,  6,
                                                          8, 9, 10, 11, 12, 13, 14, 15};

/// Ends a compilation that comes here.
[[noreturn]] void notAnAUID();

consteval std::byte hexDigit(char digit) {
    if (digit >= '0' && digit <= '9') {
        return static_cast<std::byte>(digit - '0');
    }
    if (digit >= 'a' && digit <= 'f') {
        return static_cast<std::byte>(digit - 'a' + 10);
    }
    notAnAUID();
}

}  // namespace textForm

/// The AUID "9d2ea894-0968-11d3-8a38-0050040ef7d2", lower case. Anything else does not compile.
consteval AUID auid(std::string_view text) {
    if (text.size() != 36) {
        textForm::notAnAUID();
    }
    AUID result;
    std::size_t at = 0;
    for (const std::size_t place : textForm::storedPlaces) {
        if (at == 8 || at == 13 || at == 18 || at == 23) {
            if (text[at] != '-') {
                textForm::notAnAUID();
            }
            ++at;
        }
        result.bytes[place] =
            (textForm::hexDigit(text[at]) << 4U) | textForm::hexDigit(text[at + 1]);
        at += 2;
    }
    return result;
}

/// The AUID of a UUID in the order of its text form, as it is calculated and sent.
[[nodiscard]] AUID auidOfUUID(const std::array<std::byte, 16>& uuid) noexcept;

/// The UMID of this material number: a universal label for "material of no known type, number made
/// as a UUID", instance 0. Different materials give different UMIDs.
[[nodiscard]] MobID mobIDOfMaterial(const AUID& material) noexcept;

}  // namespace aaf
}  // namespace trellant
