// SPDX-License-Identifier: Apache-2.0
// The outline of one audio file, as a file of its own.
#pragma once

#include <trellant/audio/waveform_data.h>
#include <trellant/handoff/work_progress.h>

#include <cstdint>
#include <optional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {
namespace listening {

/// Runs `converter` (trellant-wav) for the AIFF, AIFC or WAVE file at `source`: a pair for each
/// `framesPerPair` frames, 1 to 2^31 - 1, in the form of waveform_data.h. Absent when there is a
/// new file at `destination`; else the reason, in one line, and no file. Throws
/// AAFCancellationError.
[[nodiscard]] std::optional<std::string> writeWaveformFile(
    const std::string& converter, const std::string& source, const std::string& destination,
    std::uint32_t framesPerPair, audio::PeakBits bits, WorkProgress& progress);

}  // namespace listening
}  // namespace trellant
