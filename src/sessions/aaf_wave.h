// SPDX-License-Identifier: Apache-2.0
// Plain WAVE files: what stands before their samples, and the bytes of those that exist.
#pragma once

#include <trellant/base/bytes.h>
#include <trellant/compound/byte_source.h>

#include <cstdint>
#include <string>

namespace trellant::sessions {

struct WaveForm {
    bool isFloatingPoint = false;
    std::uint16_t channels = 1;
    /// Samples of one channel in a second.
    std::uint32_t sampleRate = 0;
    std::uint16_t bits = 16;
};

/// Bytes of one sample of all channels; the largest number there is beyond it. So it is with the
/// next two.
[[nodiscard]] std::uint16_t blockAlign(const WaveForm& form) noexcept;
[[nodiscard]] std::uint32_t bytesPerSecond(const WaveForm& form) noexcept;
/// Of so many samples of each channel.
[[nodiscard]] std::uint64_t dataByteCount(const WaveForm& form, std::int64_t frames) noexcept;

/// The 44 bytes before the samples. Sizes beyond 32 bits are the largest number there is, as in
/// files that say them elsewhere.
[[nodiscard]] Bytes waveHead(const WaveForm& form, std::uint64_t dataBytes);

/// The bytes of a file from `offset` on, read when they are asked for: fewer where the file is
/// shorter. Throws SystemCallError for a file that cannot be read.
[[nodiscard]] compound::ByteSource partOfFile(std::string path, std::uint64_t offset,
                                              std::uint64_t byteCount);

}  // namespace trellant::sessions
