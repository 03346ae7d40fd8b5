// SPDX-License-Identifier: Apache-2.0
// Audible samples, the same on every machine: whole-number arithmetic only.
#pragma once

#include <trellant/base/byte_order.h>
#include <trellant/io/byte_readers.h>

#include <cstdint>

namespace trellant::testing {

struct ToneSpec {
    std::uint32_t sampleRate = 48'000;
    /// In frames; a frame has a sample of each channel, all the same.
    std::uint32_t frames = 0;
    std::uint16_t channels = 1;
    /// 16 or 24.
    std::uint16_t bitsPerSample = 16;
    /// In hertz.
    std::uint32_t frequency = 440;
    OMFByteOrder order = OMFByteOrder::little;
};

/// A triangle wave at half of full scale.
[[nodiscard]] Bytes toneSamples(const ToneSpec& given);

}  // namespace trellant::testing
