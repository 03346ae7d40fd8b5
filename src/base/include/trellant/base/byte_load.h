// SPDX-License-Identifier: Apache-2.0
// Numbers out of raw bytes, for decoders that have checked their bounds already.
#pragma once

#include <trellant/base/byte_order.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace trellant {

constexpr std::uint16_t byteSwapped(std::uint16_t value) noexcept {
    return __builtin_bswap16(value);
}
constexpr std::uint32_t byteSwapped(std::uint32_t value) noexcept {
    return __builtin_bswap32(value);
}
constexpr std::uint64_t byteSwapped(std::uint64_t value) noexcept {
    return __builtin_bswap64(value);
}

/// The number in the `sizeof(Unsigned)` bytes at `bytes`, of any alignment.
template <typename Unsigned>
[[nodiscard]] Unsigned loadUnsigned(const std::byte* bytes, OMFByteOrder order) noexcept {
    Unsigned value = 0;
    std::memcpy(&value, bytes, sizeof value);
    const bool isNative =
        (order == OMFByteOrder::little) == (std::endian::native == std::endian::little);
    return isNative ? value : byteSwapped(value);
}

}  // namespace trellant
