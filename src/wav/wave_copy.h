// SPDX-License-Identifier: Apache-2.0
// Uncompressed AIFF, AIFC and WAVE audio as plain WAVE, sample for sample.
//
// Whole numbers go through 32-bit ones and floating point through its own kind, so that nothing is
// rounded; 8-bit samples change sides (signed here, unsigned there) and keep their value.
#pragma once

#include "conversion_error.h"
#include "origin.h"

#include <cstdint>
#include <optional>
#include <string>

namespace trellant::wav {

/// Whether so many bytes of samples need the form of WAVE with 64-bit sizes.
[[nodiscard]] bool needsLargeForm(std::uint64_t sampleBytes) noexcept;

/// Reads the file at `source` and writes a new one at `destination`, with as many frames: all of
/// its channels, or the one `channel` (from 0) alone. Throws ConversionError, after which there is
/// no file at `destination` but the one that was there before.
void copyAsWave(const std::string& source, const std::string& destination,
                const std::optional<int>& channel = std::nullopt);

/// The same for all channels, and the new file says where its sound comes from. A WAVE file keeps
/// what it holds beside its sound, and one that says that itself is a ConversionError.
void copyWithOrigin(const std::string& source, const std::string& destination,
                    const Origin& origin);

}  // namespace trellant::wav
