// SPDX-License-Identifier: Apache-2.0
// Samples as WAVE files hold them, little-endian, and as numbers to reckon with: full scale is 1.
//
// A whole number of b bits counts as itself divided by 2^(b-1), exactly (8-bit ones have 128 for
// silence). The way back rounds to the nearest whole number, halves away from zero; a value counts
// as a half already when it lies less than a millionth (2^-20) of a step short of it, so that
// whether a sum in floating point came out a hair below what it is on paper does not matter. What
// is beyond the largest or the smallest number becomes that one and is counted. Nothing is
// dithered.
#pragma once

#include <trellant/base/bytes.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace [[gnu::visibility("default")]] trellant {
namespace audio {

/// 8, 16, 24 or 32 bits of a whole number, 32 or 64 of floating point.
struct PcmFormat {
    std::uint16_t bits = 24;
    bool isFloatingPoint = false;
    bool operator==(const PcmFormat&) const = default;

    [[nodiscard]] std::size_t bytes() const noexcept { return bits / 8U; }
};

/// Whether it is one of those above.
[[nodiscard]] bool isPcmFormat(const PcmFormat& format) noexcept;

/// What every byte of silence is.
[[nodiscard]] std::byte silentByte(const PcmFormat& format) noexcept;

/// One channel of whole frames: `channel` (from 0) of `channels`. `bytes` holds values.size()
/// frames. Numbers that are none (of floating point) count as 0.
void decodePcm(const PcmFormat& format, ByteView bytes, std::size_t channels, std::size_t channel,
               std::span<double> values);

/// Writes values.size() * format.bytes() bytes to `bytes`. Gives how many values were cut off at
/// full scale: none in floating point, where no zero has a sign either.
[[nodiscard]] std::uint64_t encodePcm(const PcmFormat& format, std::span<const double> values,
                                      std::span<std::byte> bytes);

/// Whole numbers one after the other, each at the upper end of 32 bits: `numbers.size()` of them.
void unpackPcm(const PcmFormat& format, ByteView bytes, std::span<std::int32_t> numbers);

/// Whether whole numbers of `from` are whole numbers of `to`, with zeros below them at most.
[[nodiscard]] bool isWidening(const PcmFormat& from, const PcmFormat& to) noexcept;

/// What decodePcm and encodePcm make of samples, one after the other, without the way through
/// floating point; isWidening(from, to) has to hold. Fills `widened` with whole samples of `to`;
/// `bytes` holds as many frames.
void widenPcm(const PcmFormat& from, ByteView bytes, std::size_t channels, std::size_t channel,
              const PcmFormat& to, std::span<std::byte> widened);

}  // namespace audio
}  // namespace trellant
