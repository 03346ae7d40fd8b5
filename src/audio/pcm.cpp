// SPDX-License-Identifier: Apache-2.0
#include <trellant/audio/pcm.h>
#include <trellant/base/precondition.h>

#include <bit>
#include <cmath>
#include <limits>

namespace trellant::audio {

namespace {

/// A half, and what makes one of a sum that fell short of it.
constexpr double roundingStep = 0.5 + 1.0 / (1U << 20U);
constexpr std::uint32_t middleOfEight = 0x80;

template <std::size_t width>
std::uint64_t wordAt(const std::byte* bytes) noexcept {
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < width; ++i) {
        word |= std::to_integer<std::uint64_t>(bytes[i]) << (8 * i);
    }
    return word;
}

template <std::size_t width>
void putWord(std::byte* bytes, std::uint64_t word) noexcept {
    for (std::size_t i = 0; i < width; ++i) {
        bytes[i] = static_cast<std::byte>(word >> (8 * i) & 0xFFU);
    }
}

template <std::size_t width>
struct WholeNumber {
    static constexpr std::size_t bytes = width;
    static constexpr double scale = static_cast<double>(std::uint64_t{1} << (8 * width - 1));

    static double decoded(const std::byte* at) noexcept {
        auto word = static_cast<std::uint32_t>(wordAt<width>(at));
        if constexpr (width == 1) {
            word ^= middleOfEight;
        }
        // The sign stands at the top.
        constexpr unsigned shift = 32 - 8 * width;
        return std::bit_cast<std::int32_t>(word << shift) * (1 / (scale * (1U << shift)));
    }
    /// True when it was cut off.
    static bool encode(double value, std::byte* at) noexcept {
        const double size = std::fabs(value) * scale + roundingStep;
        const bool isNegative = value < 0;
        const double most = isNegative ? scale : scale - 1;
        const bool isCut = size >= most + 1;
        // What is no number is silence.
        const double held = isCut ? most : (size > 0 ? size : 0);
        const auto whole = static_cast<std::int64_t>(held);
        auto word = static_cast<std::uint64_t>(isNegative ? -whole : whole);
        if constexpr (width == 1) {
            word ^= middleOfEight;
        }
        putWord<width>(at, word);
        return isCut;
    }
};

struct SingleFloat {
    static constexpr std::size_t bytes = 4;
    static double decoded(const std::byte* at) noexcept {
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(wordAt<bytes>(at)));
        return std::isfinite(value) ? static_cast<double>(value) : 0;
    }
    static bool encode(double value, std::byte* at) noexcept {
        constexpr double most = std::numeric_limits<float>::max();
        const double held = value > most ? most : (value > -most ? value : -most);
        const auto single = static_cast<float>(std::isnan(value) ? 0 : held);
        putWord<bytes>(at, std::bit_cast<std::uint32_t>(single));
        return false;
    }
};

struct DoubleFloat {
    static constexpr std::size_t bytes = 8;
    static double decoded(const std::byte* at) noexcept {
        const auto value = std::bit_cast<double>(wordAt<bytes>(at));
        return std::isfinite(value) ? value : 0;
    }
    static bool encode(double value, std::byte* at) noexcept {
        putWord<bytes>(at, std::bit_cast<std::uint64_t>(std::isfinite(value) ? value : 0));
        return false;
    }
};

template <class Coding>
void decodeAll(const std::byte* at, std::size_t step, std::span<double> values) noexcept {
    for (double& value : values) {
        value = Coding::decoded(at);
        at += step;
    }
}

template <class Coding>
std::uint64_t encodeAll(std::span<const double> values, std::byte* at) noexcept {
    std::uint64_t cut = 0;
    for (const double value : values) {
        cut += Coding::encode(value, at) ? 1U : 0U;
        at += Coding::bytes;
    }
    return cut;
}

}  // namespace

bool isPcmFormat(const PcmFormat& format) noexcept {
    return format.isFloatingPoint
               ? format.bits == 32 || format.bits == 64
               : format.bits == 8 || format.bits == 16 || format.bits == 24 || format.bits == 32;
}

void decodePcm(const PcmFormat& format, ByteView bytes, std::size_t channels, std::size_t channel,
               std::span<double> values) {
    const std::size_t step = channels * format.bytes();
    precondition(isPcmFormat(format) && channel < channels && bytes.size() / step >= values.size(),
                 "bytes of whole frames");
    const std::byte* const at = bytes.data() + channel * format.bytes();
    if (values.empty()) {
        return;
    }
    if (format.isFloatingPoint) {
        format.bits == 32 ? decodeAll<SingleFloat>(at, step, values)
                          : decodeAll<DoubleFloat>(at, step, values);
        return;
    }
    switch (format.bits) {
        case 8:
            return decodeAll<WholeNumber<1>>(at, step, values);
        case 16:
            return decodeAll<WholeNumber<2>>(at, step, values);
        case 24:
            return decodeAll<WholeNumber<3>>(at, step, values);
        default:
            return decodeAll<WholeNumber<4>>(at, step, values);
    }
}

std::uint64_t encodePcm(const PcmFormat& format, std::span<const double> values,
                        std::span<std::byte> bytes) {
    precondition(isPcmFormat(format) && bytes.size() / format.bytes() >= values.size(),
                 "room for all samples");
    if (format.isFloatingPoint) {
        return format.bits == 32 ? encodeAll<SingleFloat>(values, bytes.data())
                                 : encodeAll<DoubleFloat>(values, bytes.data());
    }
    switch (format.bits) {
        case 8:
            return encodeAll<WholeNumber<1>>(values, bytes.data());
        case 16:
            return encodeAll<WholeNumber<2>>(values, bytes.data());
        case 24:
            return encodeAll<WholeNumber<3>>(values, bytes.data());
        default:
            return encodeAll<WholeNumber<4>>(values, bytes.data());
    }
}

}  // namespace trellant::audio
