// SPDX-License-Identifier: Apache-2.0
// Peaks as tools exchange them: version 2 of the data files of audiowaveform.
//
//   offset  size  meaning, little endian
//        0     4  version, 2
//        4     4  flags; bit 0 set: 8-bit values, else 16-bit ones
//        8     4  samples in a second
//       12     4  frames that a pair is of
//       16     4  pairs of one channel
//       20     4  channels
//       24        pairs, the channels of each place together: lowest, highest, signed
#pragma once

#include <trellant/audio/sound_measures.h>
#include <trellant/base/bytes.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace [[gnu::visibility("default")]] trellant {
namespace audio {

/// Of the numbers in a waveform's data.
enum class PeakBits { eight = 8, sixteen = 16 };

struct WaveformHeader {
    PeakBits bits = PeakBits::sixteen;
    std::uint32_t sampleRate = 0;
    std::uint32_t framesPerPair = 1;
    /// Of one channel.
    std::uint32_t pairs = 0;
    std::uint32_t channels = 1;
    bool operator==(const WaveformHeader&) const = default;
};

inline constexpr std::size_t waveformHeaderBytes = 24;

[[nodiscard]] std::array<std::byte, waveformHeaderBytes> waveformHeader(
    const WaveformHeader& header) noexcept;

/// Appends the pairs; 8 bits are the upper half of 16, rounded down.
void appendPairs(Bytes& bytes, std::span<const PeakPair> pairs, PeakBits bits);

/// The whole data file of a sound's peaks. `framesPerPair` beyond 2^31 - 1 is written as that.
[[nodiscard]] Bytes waveformData(const SoundMeasures& sound, PeakBits bits);

}  // namespace audio
}  // namespace trellant
