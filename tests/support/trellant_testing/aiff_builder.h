// SPDX-License-Identifier: Apache-2.0
// AIFF and AIFC files.
#pragma once

#include <trellant/io/byte_readers.h>

#include <cstdint>
#include <string>
#include <trellant_testing/wave_builder.h>
#include <vector>

namespace trellant::testing {

struct AiffSpec {
    std::string formType = "AIFF";
    std::uint16_t channels = 1;
    std::uint16_t bitsPerSample = 16;
    std::uint32_t sampleRate = 48'000;
    /// Ten bytes in place of the sample rate's own, when not empty.
    Bytes rateBytes{};
    /// Four characters, written behind the rate with an empty name when the form is "AIFC" and
    /// this is not empty.
    std::string compressionType = "NONE";
    /// Big-endian samples of the "SSND" chunk.
    Bytes samples{};
    /// Before the "COMM" chunk.
    std::vector<RiffChunk> leadingChunks{};
};

[[nodiscard]] Bytes aiffImage(const AiffSpec& given);

/// A whole number above zero as an 80-bit floating-point number, ten big-endian bytes.
[[nodiscard]] Bytes extended80Bytes(std::uint32_t value);

}  // namespace trellant::testing
