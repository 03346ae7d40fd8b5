// SPDX-License-Identifier: Apache-2.0
// Words are loaded and stored whole and loops have no branches, so that compilers make vectors of
// them.
#include <trellant/audio/pcm.h>
#include <trellant/base/precondition.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

// Vectors of twice the width, where the processor has them; results are the same to the bit.
// Sanitizers are not ready yet when the choice is made.
#if defined(__x86_64__) && defined(__GLIBC__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define TRELLANT_WIDE_VECTORS [[gnu::target_clones("avx2", "default")]]
#else
#define TRELLANT_WIDE_VECTORS
#endif

namespace trellant::audio {

namespace {

/// A half, and what makes one of a sum that fell short of it.
constexpr double roundingStep = 0.5 + 1.0 / (1U << 20U);
constexpr std::uint32_t middleOfEight = 0x80000000;
constexpr bool isLittle = std::endian::native == std::endian::little;

template <class Word>
Word wordAt(const std::byte* bytes) noexcept {
    Word word = 0;
    if constexpr (isLittle) {
        std::memcpy(&word, bytes, sizeof(Word));
    } else {
        for (std::size_t i = 0; i < sizeof(Word); ++i) {
            word |= static_cast<Word>(std::to_integer<Word>(bytes[i]) << (8 * i));
        }
    }
    return word;
}

template <class Word>
void putWord(std::byte* bytes, Word word) noexcept {
    if constexpr (isLittle) {
        std::memcpy(bytes, &word, sizeof(Word));
    } else {
        for (std::size_t i = 0; i < sizeof(Word); ++i) {
            bytes[i] = static_cast<std::byte>(word >> (8 * i) & 0xFFU);
        }
    }
}

/// Whole numbers of so many bytes. Here they stand at the upper end of 32 bits.
template <std::size_t width>
struct WholeNumber {
    static constexpr std::size_t bytes = width;

    static std::int32_t loaded(const std::byte* at) noexcept {
        if constexpr (width == 1) {
            return std::bit_cast<std::int32_t>((std::to_integer<std::uint32_t>(*at) << 24U) ^
                                               middleOfEight);
        } else if constexpr (width == 2) {
            return std::bit_cast<std::int32_t>(std::uint32_t{wordAt<std::uint16_t>(at)} << 16U);
        } else if constexpr (width == 3) {
            return std::bit_cast<std::int32_t>(std::uint32_t{wordAt<std::uint16_t>(at)} << 8U |
                                               std::to_integer<std::uint32_t>(at[2]) << 24U);
        } else {
            return std::bit_cast<std::int32_t>(wordAt<std::uint32_t>(at));
        }
    }
    /// With a byte in front of it that may be read.
    static std::int32_t loadedWithin(const std::byte* at) noexcept {
        if constexpr (width == 3) {
            return std::bit_cast<std::int32_t>(wordAt<std::uint32_t>(at - 1) & 0xFFFFFF00U);
        } else {
            return loaded(at);
        }
    }
    static void store(std::byte* at, std::int32_t number) noexcept {
        const auto word = std::bit_cast<std::uint32_t>(number);
        if constexpr (width == 1) {
            *at = static_cast<std::byte>((word ^ middleOfEight) >> 24U);
        } else if constexpr (width == 2) {
            putWord(at, static_cast<std::uint16_t>(word >> 16U));
        } else if constexpr (width == 3) {
            putWord(at, static_cast<std::uint16_t>(word >> 8U));
            at[2] = static_cast<std::byte>(word >> 24U);
        } else {
            putWord(at, word);
        }
    }
};

struct SingleFloat {
    static constexpr std::size_t bytes = 4;
    static double decoded(const std::byte* at) noexcept {
        const auto value = std::bit_cast<float>(wordAt<std::uint32_t>(at));
        return std::isfinite(value) ? static_cast<double>(value) : 0;
    }
    static void encode(double value, std::byte* at) noexcept {
        constexpr double most = std::numeric_limits<float>::max();
        const double number = std::isnan(value) ? 0 : value;
        const double held = number > most ? most : (number > -most ? number : -most);
        // Below zero by less than the least that there is: no sign either.
        putWord(at, std::bit_cast<std::uint32_t>(static_cast<float>(held) + 0.0F));
    }
};

struct DoubleFloat {
    static constexpr std::size_t bytes = 8;
    static double decoded(const std::byte* at) noexcept {
        const auto value = std::bit_cast<double>(wordAt<std::uint64_t>(at));
        return std::isfinite(value) ? value : 0;
    }
    static void encode(double value, std::byte* at) noexcept {
        putWord(at, std::bit_cast<std::uint64_t>(std::isfinite(value) ? value + 0.0 : 0));
    }
};

/// `step`: bytes from one frame to the next. `take` gets each sample's position and number.
template <class Coding, class Take>
void forEachNumber(const std::byte* at, std::size_t step, std::size_t count,
                   const Take& take) noexcept {
    if (count != 0) {
        take(std::size_t{0}, Coding::loaded(at));
    }
    for (std::size_t i = 1; i < count; ++i) {
        take(i, Coding::loadedWithin(at + i * step));
    }
}

template <class Coding>
void decodeWhole(const std::byte* at, std::size_t step, std::span<double> values) noexcept {
    constexpr double unit = 1.0 / 2'147'483'648.0;
    double* const target = values.data();
    const auto take = [target](std::size_t i, std::int32_t number) { target[i] = number * unit; };
    // The usual step as a constant makes a better loop.
    step == Coding::bytes ? forEachNumber<Coding>(at, Coding::bytes, values.size(), take)
                          : forEachNumber<Coding>(at, step, values.size(), take);
}

template <class Coding>
void decodeFloating(const std::byte* at, std::size_t step, std::span<double> values) noexcept {
    for (double& value : values) {
        value = Coding::decoded(at);
        at += step;
    }
}

/// How many values whole numbers are made of at a time, in several loops without a branch: signs of
/// sounds are as good as random, and each that was guessed wrongly would cost more than all else.
constexpr std::size_t pieceValues = 1'024;
using Piece = std::array<double, pieceValues>;

/// To be cut at the point. What is no number is silence.
[[gnu::always_inline]] inline void round(std::span<const double> values, double scale,
                                         Piece& rounded) noexcept {
    for (std::size_t i = 0; i < values.size(); ++i) {
        rounded[i] = std::isnan(values[i]) ? 0 : values[i];
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double scaled = rounded[i] * scale;
        rounded[i] = scaled + std::copysign(roundingStep, scaled);
    }
}

/// How many of the first `count` lie a step or more beyond the largest or the smallest number. Both
/// differences are exact where it matters.
[[gnu::always_inline]] inline std::uint64_t beyondScale(const Piece& rounded, std::size_t count,
                                                        double scale) noexcept {
    std::int32_t cut = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double above = rounded[i] - (scale - 1);
        const double below = -scale - rounded[i];
        const double farther = above > below ? above : below;
        const double isCut = farther >= 1 ? 1 : 0;
        cut += static_cast<std::int32_t>(isCut);
    }
    return static_cast<std::uint64_t>(cut);
}

template <std::size_t width>
[[gnu::always_inline]] inline void storePiece(const Piece& rounded, std::size_t count, double scale,
                                              std::byte* at) noexcept {
    constexpr unsigned shift = 32 - 8 * width;
    std::array<std::int32_t, pieceValues> numbers;
    for (std::size_t i = 0; i < count; ++i) {
        const double below = rounded[i] < scale - 1 ? rounded[i] : scale - 1;
        const double held = below > -scale ? below : -scale;
        numbers[i] = static_cast<std::int32_t>(
            static_cast<std::uint32_t>(static_cast<std::int32_t>(held)) << shift);
    }
    for (std::size_t i = 0; i < count; ++i) {
        WholeNumber<width>::store(at + i * width, numbers[i]);
    }
}

template <std::size_t width>
[[gnu::always_inline]] inline std::uint64_t encodeWhole(std::span<const double> values,
                                                        std::byte* at) noexcept {
    constexpr auto scale = static_cast<double>(std::uint64_t{1} << (8 * width - 1));
    Piece rounded;
    std::uint64_t cut = 0;
    while (!values.empty()) {
        const std::size_t count = std::min(pieceValues, values.size());
        round(values.first(count), scale, rounded);
        cut += beyondScale(rounded, count, scale);
        storePiece<width>(rounded, count, scale, at);
        at += count * width;
        values = values.subspan(count);
    }
    return cut;
}

/// `bits` of PcmFormat, of whole numbers.
TRELLANT_WIDE_VECTORS std::uint64_t encodeBits(unsigned bits, std::span<const double> values,
                                               std::byte* at) noexcept {
    switch (bits) {
        case 8:
            return encodeWhole<1>(values, at);
        case 16:
            return encodeWhole<2>(values, at);
        case 24:
            return encodeWhole<3>(values, at);
        default:
            return encodeWhole<4>(values, at);
    }
}

template <class Coding>
void encodeFloating(std::span<const double> values, std::byte* at) noexcept {
    for (std::size_t i = 0; i < values.size(); ++i) {
        Coding::encode(values[i], at + i * Coding::bytes);
    }
}

template <class Coding>
void unpackAll(const std::byte* at, std::span<std::int32_t> numbers) noexcept {
    std::int32_t* const target = numbers.data();
    forEachNumber<Coding>(at, Coding::bytes, numbers.size(),
                          [target](std::size_t i, std::int32_t number) { target[i] = number; });
}

template <class Coding, std::size_t width>
void widenAll(const std::byte* at, std::size_t step, std::byte* target,
              std::size_t count) noexcept {
    forEachNumber<Coding>(at, step, count, [target](std::size_t i, std::int32_t number) {
        WholeNumber<width>::store(target + i * width, number);
    });
}

template <class Coding>
void widenTo(const PcmFormat& to, const std::byte* at, std::size_t step, std::byte* target,
             std::size_t count) noexcept {
    switch (to.bits) {
        case 8:
            return widenAll<Coding, 1>(at, step, target, count);
        case 16:
            return widenAll<Coding, 2>(at, step, target, count);
        case 24:
            return widenAll<Coding, 3>(at, step, target, count);
        default:
            return widenAll<Coding, 4>(at, step, target, count);
    }
}

bool holdsFrames(const PcmFormat& format, ByteView bytes, std::size_t channels, std::size_t channel,
                 std::size_t frames) noexcept {
    return isPcmFormat(format) && channel < channels &&
           bytes.size() / (channels * format.bytes()) >= frames;
}

}  // namespace

bool isPcmFormat(const PcmFormat& format) noexcept {
    return format.isFloatingPoint
               ? format.bits == 32 || format.bits == 64
               : format.bits == 8 || format.bits == 16 || format.bits == 24 || format.bits == 32;
}

std::byte silentByte(const PcmFormat& format) noexcept {
    return format.bits == 8 && !format.isFloatingPoint ? std::byte{0x80} : std::byte{0};
}

void decodePcm(const PcmFormat& format, ByteView bytes, std::size_t channels, std::size_t channel,
               std::span<double> values) {
    precondition(holdsFrames(format, bytes, channels, channel, values.size()),
                 "bytes of whole frames");
    const std::size_t step = channels * format.bytes();
    const std::byte* const at = bytes.data() + channel * format.bytes();
    if (format.isFloatingPoint) {
        format.bits == 32 ? decodeFloating<SingleFloat>(at, step, values)
                          : decodeFloating<DoubleFloat>(at, step, values);
        return;
    }
    switch (format.bits) {
        case 8:
            return decodeWhole<WholeNumber<1>>(at, step, values);
        case 16:
            return decodeWhole<WholeNumber<2>>(at, step, values);
        case 24:
            return decodeWhole<WholeNumber<3>>(at, step, values);
        default:
            return decodeWhole<WholeNumber<4>>(at, step, values);
    }
}

std::uint64_t encodePcm(const PcmFormat& format, std::span<const double> values,
                        std::span<std::byte> bytes) {
    precondition(isPcmFormat(format) && bytes.size() / format.bytes() >= values.size(),
                 "room for all samples");
    if (format.isFloatingPoint) {
        format.bits == 32 ? encodeFloating<SingleFloat>(values, bytes.data())
                          : encodeFloating<DoubleFloat>(values, bytes.data());
        return 0;
    }
    return encodeBits(format.bits, values, bytes.data());
}

void unpackPcm(const PcmFormat& format, ByteView bytes, std::span<std::int32_t> numbers) {
    precondition(!format.isFloatingPoint && holdsFrames(format, bytes, 1, 0, numbers.size()),
                 "bytes of whole numbers");
    switch (format.bits) {
        case 8:
            return unpackAll<WholeNumber<1>>(bytes.data(), numbers);
        case 16:
            return unpackAll<WholeNumber<2>>(bytes.data(), numbers);
        case 24:
            return unpackAll<WholeNumber<3>>(bytes.data(), numbers);
        default:
            return unpackAll<WholeNumber<4>>(bytes.data(), numbers);
    }
}

bool isWidening(const PcmFormat& from, const PcmFormat& to) noexcept {
    return isPcmFormat(from) && isPcmFormat(to) && !from.isFloatingPoint && !to.isFloatingPoint &&
           from.bits <= to.bits;
}

void widenPcm(const PcmFormat& from, ByteView bytes, std::size_t channels, std::size_t channel,
              const PcmFormat& to, std::span<std::byte> widened) {
    precondition(isWidening(from, to), "numbers that have room");
    const std::size_t count = widened.size() / to.bytes();
    precondition(holdsFrames(from, bytes, channels, channel, count), "bytes of whole frames");
    const std::size_t step = channels * from.bytes();
    const std::byte* const at = bytes.data() + channel * from.bytes();
    switch (from.bits) {
        case 8:
            return widenTo<WholeNumber<1>>(to, at, step, widened.data(), count);
        case 16:
            return widenTo<WholeNumber<2>>(to, at, step, widened.data(), count);
        case 24:
            return widenTo<WholeNumber<3>>(to, at, step, widened.data(), count);
        default:
            return widenTo<WholeNumber<4>>(to, at, step, widened.data(), count);
    }
}

}  // namespace trellant::audio
