// SPDX-License-Identifier: Apache-2.0
// A small copy of a sound, to be played where the whole one would be too much: Ogg with Opus at
// 48,000 samples in a second, one channel or two.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace trellant::wav {

struct PreviewPart {
    /// What lies beyond the source's end is cut off.
    std::uint64_t firstFrame = 0;
    /// Absent: up to the end.
    std::optional<std::uint64_t> frames{};
    /// The one channel (from 0) that is heard; absent: all, of a source with one or two.
    std::optional<int> channel{};
};

/// Bits in a second of one channel.
inline constexpr std::uint32_t lowestBitRate = 6'000;
inline constexpr std::uint32_t highestBitRate = 256'000;

/// Writes a preview of the file at `source` to a new one at `destination`. Its first sample is the
/// part's first frame: what the format puts before it, decoders leave out. The same sound gives the
/// same bytes. Throws ConversionError, also for a part without frames; there is no file at
/// `destination` then but the one that was there before.
void writePreview(const std::string& source, const std::string& destination, std::uint32_t bitRate,
                  const PreviewPart& part);

}  // namespace trellant::wav
