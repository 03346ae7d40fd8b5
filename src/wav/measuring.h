// SPDX-License-Identifier: Apache-2.0
// What is measured of an audio file, in one pass over it.
#pragma once

#include <trellant/audio/waveform_data.h>

#include <cstdint>
#include <optional>
#include <string>

namespace trellant::wav {

/// Writes the measures of the file at `source` to a new one at `destination` (packedMeasures of
/// audio), its outline of no more than `mostPairs` pairs a channel, 1 to audio::mostPairs.
/// `bitDepth`: the depth that the header names, where samples fill less than their bytes. Throws
/// ConversionError, after which there is no file at `destination` but the one that was there
/// before.
void writeMeasures(const std::string& source, const std::string& destination,
                   std::uint64_t mostPairs, const std::optional<std::uint32_t>& bitDepth);

/// Writes the outline alone, as waveform_data.h has it, a pair for so many frames (1 to 2^31 - 1),
/// and keeps no more of it in memory than a block. Throws as writeMeasures does.
void writeWaveform(const std::string& source, const std::string& destination,
                   std::uint32_t framesPerPair, audio::PeakBits bits);

}  // namespace trellant::wav
