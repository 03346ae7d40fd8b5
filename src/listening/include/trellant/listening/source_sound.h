// SPDX-License-Identifier: Apache-2.0
// What the audio files of a timeline sound like: measured, and as small copies to be played, by the
// confined converter: a process for a large file or for up to 32 small ones, and at most as many at
// a time as there are processors. A file that cannot be read costs its own answer and nothing else.
#pragma once

#include <trellant/audio/sound_measures.h>
#include <trellant/base/bytes.h>
#include <trellant/extraction/staging.h>
#include <trellant/handoff/work_progress.h>
#include <trellant/model/timeline.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace listening {

enum class SoundState {
    heard,
    /// No clip plays the source, so nobody listened to it.
    notPlayed,
    /// There is no file.
    missing,
    /// There is a file whose sound cannot be had: damaged, compressed, or of another kind.
    refused
};

/// What is known of one source.
struct SourceSound {
    SoundState state = SoundState::missing;
    /// Set when `heard`; sources of one file have one.
    std::shared_ptr<const audio::SoundMeasures> measures{};
    /// Why there are none, in one line for people; empty when `heard` or `notPlayed`.
    std::string reason{};
};

struct MeasureRequest {
    /// The program trellant-wav (installedWaveConverter).
    std::string converter{};
    /// Pairs of one channel, 1 to audio::mostPairs: the outline is just so coarse that no source
    /// has more.
    std::size_t mostPairs = 8'192;
};

/// One for each of the timeline's essences, in their order. Their file URLs name the files, as
/// after takeOut or readHandOff. `staging` holds what the converter writes, which is gone
/// afterwards. Throws AAFCancellationError after a stop.
[[nodiscard]] std::vector<SourceSound> measureSources(const AAFTimeline& timeline,
                                                      const MeasureRequest& request,
                                                      const Staging& staging,
                                                      WorkProgress& progress);

/// A part of a source to be played.
struct PreviewWish {
    /// Position in the timeline's essences.
    std::size_t essence = 0;
    /// The one channel (from 0) to be heard; absent: all, of a file with one or two.
    std::optional<std::int64_t> channel{};
    /// In the source's own frames; absent `frames`: up to its end. What lies beyond the end is cut
    /// off.
    std::int64_t firstFrame = 0;
    std::optional<std::int64_t> frames{};
    bool operator==(const PreviewWish&) const = default;
};

enum class PreviewState {
    made,
    /// See `reason`.
    failed,
    /// It did not fit into the bytes that were allowed.
    leftOut
};

struct Preview {
    PreviewState state = PreviewState::failed;
    /// When made: a file of Ogg with Opus, whose first sample is the wish's first frame. Decoders
    /// give 48,000 samples in a second, whatever the source has.
    Bytes ogg{};
    /// Why there is none, in one line for people; empty when made.
    std::string reason{};
};

struct PreviewRequest {
    /// The program trellant-wav (installedWaveConverter).
    std::string converter{};
    /// Of one channel, 6,000 to 256,000 bits in a second.
    std::uint32_t bitsPerSecond = 64'000;
    /// Bytes of all previews together.
    std::uint64_t mostBytes = 30'000'000;
};

/// One for each wish, in their order. The bytes go to the wishes in that order: one that does not
/// fit is left out, and a smaller one behind it may still be made. Throws AAFCancellationError
/// after a stop.
[[nodiscard]] std::vector<Preview> previewSources(const AAFTimeline& timeline,
                                                  const std::vector<PreviewWish>& wishes,
                                                  const PreviewRequest& request,
                                                  const Staging& staging, WorkProgress& progress);

/// About how many bytes a preview of so long a sound takes: for choosing wishes.
[[nodiscard]] std::uint64_t estimatedPreviewBytes(double seconds, std::size_t channels,
                                                  std::uint32_t bitsPerSecond) noexcept;

}  // namespace listening
}  // namespace trellant
