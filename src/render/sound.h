// SPDX-License-Identifier: Apache-2.0
// What a plan sounds like, piece by piece. With x a sample of the media (full scale 1), c the
// clip's gain and e its automation at that place, f and g its fades, t and u the track's gain and
// its automation, all by trellant/audio/gain.h:
//
//   track   (sum over its clips, in order of their starts, of x * (((c * e) * f) * g)) * (t * u)
//   edits   sum over its clips of x
//   mix     left and right: sum over the tracks that are heard, of the track's sound by panGains of
//           the track's pan there, the middle without one
//   clip    x * (c * e), with e in the handles as at the clip's edge; of edits x
//
// all in doubles. Muted clips are silent, but where a clip is taken alone. A crossfade is the sum
// of two clips with fades. A clip that does not say which channel of several it plays has the
// first. Media that are missing are silent.
#pragma once

#include "media_reader.h"

#include <trellant/exchange/export_plan.h>
#include <trellant/render/render.h>

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace trellant::render {

/// The next frames of a sound, as far as they are of one kind.
struct Stretch {
    enum class Kind {
        /// No rule says more of them: `next` has to.
        workedOut,
        silent,
        /// They are a medium's own samples from frame `first` on: of a sound of one channel.
        copied
    };
    Kind kind = Kind::workedOut;
    /// 1 or more.
    std::size_t frames = 0;
    std::size_t media = 0;
    std::size_t channel = 0;
    exchange::Samples first = 0;
};

/// A sound that is made from its start on.
class Sound {
  public:
    Sound() = default;
    virtual ~Sound() = default;
    Sound(const Sound&) = delete;
    Sound& operator=(const Sound&) = delete;
    Sound(Sound&&) = delete;
    Sound& operator=(Sound&&) = delete;

    [[nodiscard]] virtual std::size_t channels() const noexcept = 0;
    /// The next frames, channels interleaved. Throws FileSystemError for media that cannot be read.
    virtual void next(MediaReader& media, std::span<double> samples) = 0;
    /// What comes next: `frames` of it (1 or more) at most. Gives what `next` would give.
    [[nodiscard]] virtual Stretch ahead(const MediaReader& media, std::size_t frames) = 0;
    /// Goes on behind the next so many frames.
    virtual void skip(const MediaReader& media, exchange::Samples frames) = 0;
};

/// Each begins at the sample `from` of the session. `plan` must outlive it, and be planned with
/// overlaps kept. `track` and `clip` are positions: in ExportPlan::tracks, in that track's lane.
[[nodiscard]] std::unique_ptr<Sound> trackSound(const exchange::ExportPlan& plan, std::size_t track,
                                                Treatment treatment, exchange::Samples from);
[[nodiscard]] std::unique_ptr<Sound> mixSound(const exchange::ExportPlan& plan,
                                              exchange::Samples from);
/// From `head` samples before the clip's start on.
[[nodiscard]] std::unique_ptr<Sound> clipSound(const exchange::PlannedClip& clip,
                                               Treatment treatment, exchange::Samples head);

/// Positions of the tracks that the mix has: with clips, neither muted nor beside soloed ones.
[[nodiscard]] std::vector<std::size_t> heardTracks(const exchange::ExportPlan& plan);

}  // namespace trellant::render
