// SPDX-License-Identifier: Apache-2.0
// Audio at another sample rate, by libsoxr at very high quality: what is folded back lies 170 dB
// down, and the sound stays where it is. Sample n of the new file is the old one's moment
// n * from / to.
#pragma once

#include "conversion_error.h"

#include <cstdint>
#include <string>

namespace trellant::wav {

/// Samples in a second, as a fraction.
struct SampleRate {
    std::uint64_t numerator = 48'000;
    std::uint64_t denominator = 1;
};

/// Reads the file at `source`, whose samples count as of the rate `from` whatever its header says,
/// and writes a new WAVE file at `destination`: all of its channels at the rate `to` (samples in a
/// second) in floating point of 32 bits. Throws ConversionError, after which there is no file at
/// `destination` but the one that was there before.
void resampleAsWave(const std::string& source, const std::string& destination,
                    const SampleRate& from, std::uint32_t to);

}  // namespace trellant::wav
