// SPDX-License-Identifier: Apache-2.0
#include "name_based_uuid.h"

#include <algorithm>
#include <cstdint>
#include <nettle/sha1.h>

namespace trellant::sessions {

namespace {

/// Made once, by chance: names of other programs give other identifiers.
constexpr std::array<std::uint8_t, 16> ownNamespace{0x3D, 0x8E, 0x71, 0xB4, 0x52, 0x0C, 0x4F, 0x93,
                                                    0xA6, 0x1D, 0xE8, 0x27, 0x9B, 0x60, 0xC5, 0x4A};

}  // namespace

std::array<std::byte, 16> nameBasedUuid(std::string_view name) {
    sha1_ctx state;
    ::sha1_init(&state);
    ::sha1_update(&state, ownNamespace.size(), ownNamespace.data());
    // The library takes no other bytes than these.
    ::sha1_update(&state, name.size(), reinterpret_cast<const std::uint8_t*>(name.data()));
    std::array<std::uint8_t, SHA1_DIGEST_SIZE> digest{};
    ::sha1_digest(&state, digest.size(), digest.data());
    std::array<std::byte, 16> uuid{};
    std::transform(digest.begin(), digest.begin() + uuid.size(), uuid.begin(),
                   [](std::uint8_t value) { return std::byte{value}; });
    uuid[6] = (uuid[6] & std::byte{0x0F}) | std::byte{0x50};
    uuid[8] = (uuid[8] & std::byte{0x3F}) | std::byte{0x80};
    return uuid;
}

std::string uuidText(const std::array<std::byte, 16>& uuid) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < uuid.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text += '-';
        }
        const auto value = std::to_integer<unsigned>(uuid.at(i));
        text += digits[value >> 4U];
        text += digits[value & 0xFU];
    }
    return text;
}

}  // namespace trellant::sessions
