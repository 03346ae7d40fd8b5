// SPDX-License-Identifier: Apache-2.0
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/tone.h>

namespace trellant::testing {

namespace {

/// The triangle at `phase` of 65536, from -16384 to 16384.
std::int32_t triangle(std::uint32_t phase) {
    const auto position = static_cast<std::int32_t>(phase);
    return position < 32'768 ? position - 16'384 : 49'152 - position;
}

}  // namespace

Bytes toneSamples(const ToneSpec& given) {
    ByteWriter samples(given.order);
    for (std::uint32_t frame = 0; frame < given.frames; ++frame) {
        const std::uint64_t turns =
            std::uint64_t{frame} * given.frequency * 65'536 / given.sampleRate;
        const auto sample =
            static_cast<std::uint32_t>(triangle(static_cast<std::uint32_t>(turns % 65'536)));
        for (std::uint16_t channel = 0; channel < given.channels; ++channel) {
            if (given.bitsPerSample == 16) {
                samples.u16(static_cast<std::uint16_t>(sample));
                continue;
            }
            // 24 bits: the low byte below the 16 of the triangle is zero.
            const bool isLittle = given.order == OMFByteOrder::little;
            samples.bytes(isLittle ? hex("00") : Bytes{});
            samples.u16(static_cast<std::uint16_t>(sample));
            samples.bytes(isLittle ? Bytes{} : hex("00"));
        }
    }
    return samples.written();
}

}  // namespace trellant::testing
