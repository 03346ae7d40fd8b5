// SPDX-License-Identifier: Apache-2.0
// WAVE files.
#pragma once

#include <trellant/io/byte_readers.h>

#include <cstdint>
#include <string>
#include <vector>

namespace trellant::testing {

struct RiffChunk {
    /// Four characters.
    std::string id{};
    Bytes data{};
};

struct WaveSpec {
    std::string form = "RIFF";
    std::string formType = "WAVE";
    /// 1 whole numbers, 3 floating point, 0xFFFE extensible (written with its 40-byte format).
    std::uint16_t formatTag = 1;
    std::uint16_t channels = 1;
    std::uint32_t sampleRate = 48'000;
    std::uint16_t bitsPerSample = 16;
    /// Little-endian samples of the "data" chunk.
    Bytes samples{};
    /// Before the format chunk.
    std::vector<RiffChunk> leadingChunks{};
};

[[nodiscard]] Bytes waveImage(const WaveSpec& given);

}  // namespace trellant::testing
