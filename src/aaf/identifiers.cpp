// SPDX-License-Identifier: Apache-2.0
#include <trellant/aaf/identifiers.h>

#include <algorithm>
#include <cstdint>

namespace trellant::aaf {

namespace {

/// Universal label, version 5 of its dictionary, material of no known type, number by UUID; then
/// the length of what follows and the instance.
constexpr std::array<std::uint8_t, 16> umidHead{0x06, 0x0A, 0x2B, 0x34, 0x01, 0x01, 0x01, 0x05,
                                                0x01, 0x01, 0x0F, 0x20, 0x13, 0x00, 0x00, 0x00};

}  // namespace

AUID auidOfUUID(const std::array<std::byte, 16>& uuid) noexcept {
    AUID result;
    for (std::size_t index = 0; index < uuid.size(); ++index) {
        result.bytes[textForm::storedPlaces[index]] = uuid[index];
    }
    return result;
}

MobID mobIDOfMaterial(const AUID& material) noexcept {
    MobID result;
    std::transform(umidHead.begin(), umidHead.end(), result.bytes.begin(),
                   [](std::uint8_t byte) { return std::byte{byte}; });
    std::copy(material.bytes.begin(), material.bytes.end(), result.bytes.begin() + umidHead.size());
    return result;
}

}  // namespace trellant::aaf
