// SPDX-License-Identifier: Apache-2.0
// The tapes and films that a hand-off's audio was recorded from: what lies behind the Source Mob
// that describes an audio file.
#pragma once

#include <trellant/model/rational.h>
#include <trellant/model/timeline.h>
#include <trellant/omf/document.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// The labels of a reel.
struct ReelTimecode {
    /// The label of the reel's zero, in frames from 00:00:00:00.
    std::int64_t start = 0;
    /// Frames that labels count in a second, 1 or more.
    std::int64_t framesPerSecond = 25;
    bool drop = false;
    /// Of the track that has the labels, in edit units per second, where it is above 0. Writers
    /// have it as the true rate of the frames (30000/1001), as the rounded one, or as the rate of
    /// something else.
    std::optional<AAFRational> editRate{};
    bool operator==(const ReelTimecode&) const = default;
};

/// Where an essence was recorded from: the first mob with labels in the chain behind its file, else
/// the mob that the chain ends at.
struct Reel {
    /// The `id` of an AAFSourceEssence.
    std::string essenceID{};
    std::string mobID{};
    std::optional<std::string> name{};
    /// Where the essence's first sample lies, in seconds from the reel's zero.
    AAFRational start{};
    std::optional<ReelTimecode> timecode{};
    bool operator==(const Reel&) const = default;
};

/// Those of the essences of `timeline` that the file names a reel for, in their order. Throws
/// OMFIOError unsupported beyond the bounds of a mapping's reads.
[[nodiscard]] std::vector<Reel> reels(const OMFDocument& document, const AAFTimeline& timeline);

}  // namespace trellant
