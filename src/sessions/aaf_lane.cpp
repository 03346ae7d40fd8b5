// SPDX-License-Identifier: Apache-2.0
#include "aaf_lane.h"

#include "aaf_operations.h"

#include <algorithm>
#include <utility>

namespace trellant::sessions {

namespace {

using exchange::PlannedClip;
using exchange::PlannedFade;
using exchange::Samples;

class LaneWriter {
  public:
    /// `masterMob` is that of the clip.
    void add(const PlannedClip& clip, const aaf::MobID& masterMob) {
        if (clip.length < 1) {
            return;
        }
        const Samples overlap = crossfadeInto(clip);
        Samples fadeIn = overlap;
        if (overlap > 0) {
            addTransition(*clip.fadeIn, overlap, overlap / 2);
            end_ -= overlap;
        } else {
            fadeIn = lengthOf(clip.fadeIn, clip.length);
            closeTo(clip.start, fadeIn);
            if (fadeIn > 0) {
                addTransition(*clip.fadeIn, fadeIn, 0);
            }
        }
        sequence_.components.emplace_back(
            aaf::SourceClip{.length = clip.length,
                            .startTime = std::max<Samples>(clip.sourceStartAtSessionRate, 0),
                            .sourceID = masterMob,
                            .sourceMobSlotID = 1,
                            .operationGroups = clipOperations(clip)});
        end_ += clip.length;
        rest_ = clip.length - fadeIn;
        fadeOut_ = clip.fadeOut ? &*clip.fadeOut : nullptr;
    }

    [[nodiscard]] aaf::Sequence finished(Samples sessionLength) && {
        closeTo(sessionLength, 0);
        if (sequence_.components.empty()) {
            sequence_.components.emplace_back(aaf::Filler{0});
        }
        return std::move(sequence_);
    }

  private:
    static Samples lengthOf(const std::optional<PlannedFade>& fade, Samples most) {
        return fade ? std::clamp<Samples>(fade->length, 0, most) : 0;
    }

    /// By how much the clip and the one before it overlap in a crossfade; 0 for none.
    [[nodiscard]] Samples crossfadeInto(const PlannedClip& clip) const {
        const Samples overlap = end_ - clip.start;
        const bool isPossible = clip.crossfadesIn && clip.fadeIn && overlap > 0 &&
                                overlap <= std::min(rest_, clip.length);
        return isPossible ? overlap : 0;
    }

    /// Ends the clip before, and fills up to `place` and for a fade-in of this length on.
    void closeTo(Samples place, Samples fadeIn) {
        const Samples fadeOut =
            fadeOut_ != nullptr ? std::clamp<Samples>(fadeOut_->length, 0, rest_) : 0;
        const Samples gap = std::max<Samples>(place - end_, 0);
        if (fadeOut > 0) {
            addTransition(*fadeOut_, fadeOut, fadeOut);
        }
        if (fadeOut + gap + fadeIn > 0) {
            sequence_.components.emplace_back(aaf::Filler{fadeOut + gap + fadeIn});
        }
        end_ += gap;
        fadeOut_ = nullptr;
    }

    void addTransition(const PlannedFade& fade, Samples length, Samples cutPoint) {
        sequence_.components.emplace_back(aaf::Transition{
            .length = length, .cutPoint = cutPoint, .operationGroup = dissolve(fade.curve)});
    }

    aaf::Sequence sequence_;
    /// Where the last clip ends, or the filler.
    Samples end_ = 0;
    /// What its beginning leaves of the last clip for its fade-out.
    Samples rest_ = 0;
    /// Of the last clip; null for none.
    const PlannedFade* fadeOut_ = nullptr;
};

}  // namespace

aaf::Sequence sequenceOfLane(const exchange::Lane& lane, std::span<const aaf::MobID> masterMobs,
                             Samples sessionLength) {
    LaneWriter writer;
    for (std::size_t index = 0; index < lane.clips.size(); ++index) {
        writer.add(lane.clips[index], masterMobs[index]);
    }
    return std::move(writer).finished(sessionLength);
}

}  // namespace trellant::sessions
