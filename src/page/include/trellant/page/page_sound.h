// SPDX-License-Identifier: Apache-2.0
// The sound that a page holds: waveforms to be seen, and small copies of what the clips play.
#pragma once

#include <trellant/base/bytes.h>
#include <trellant/handoff/work_progress.h>
#include <trellant/listening/audible_hand_off.h>
#include <trellant/model/timeline.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace page {

/// A part of a source as a file that browsers decode.
struct SoundPiece {
    /// Position in the timeline's essences.
    std::size_t essence = 0;
    /// The one channel (from 0) that it has; absent: all of the source.
    std::optional<std::int64_t> channel{};
    /// Of the source: what is the first sample of the file.
    std::int64_t firstFrame = 0;
    Bytes file{};
};

struct PageSound {
    /// Of each essence the data of its waveform (waveform_data.h, 8 bits); empty where there is
    /// none.
    std::vector<Bytes> waveforms{};
    std::vector<SoundPiece> pieces{};
    /// Parts that clips play and that are not in the page: beyond its bytes, not to be had.
    std::size_t leftOut = 0;
    std::size_t failed = 0;
};

struct ListeningRequest {
    /// The program trellant-wav (installedWaveConverter).
    std::string converter{};
    /// Bytes that previews take in the document, at most; 0: there are none.
    std::uint64_t mostPreviewBytes = 30'000'000;
};

/// What the clips play of the sources, each part once: parts that overlap or are less than two
/// seconds apart are one, and none is longer than two minutes. In order of essence, channel and
/// place. A part whose end has no number is left out.
[[nodiscard]] std::vector<listening::PreviewWish> playedParts(const AAFTimeline& timeline);

/// Has all audio measured, and its previews made. Throws AAFCancellationError, FileSystemError.
[[nodiscard]] PageSound listenedTo(const listening::AudibleHandOff& audible,
                                   const ListeningRequest& request, WorkProgress& progress);

}  // namespace page
}  // namespace trellant
