// SPDX-License-Identifier: Apache-2.0
// Where on the timeline a loss lies. A record of the timeline names the object at fault and
// nothing else; a person asks for track, clip and time. A mapping that is told to
// (MappingPlaces::placesLosses) keeps both side by side.
#pragma once

#include <trellant/base/boxed.h>
#include <trellant/model/loss_kind.h>
#include <trellant/model/rational.h>
#include <trellant/omf/values.h>

#include <cstdint>
#include <optional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// A slot of the composition, whether a track came of it or not.
struct LossTrack {
    OMFObject slot = OMFObject::none;
    /// Among the composition's slots, from 0; an AAFTrackState's index.
    std::int64_t index = 0;
    /// "omf-track-12", the id that the slot's AAFTrackState has or would have.
    std::string id{};
    std::optional<std::string> name{};

    bool operator==(const LossTrack&) const = default;
};

/// Seconds from the timeline's zero.
struct LossRange {
    AAFRational start{};
    AAFRational duration{};

    bool operator==(const LossRange&) const = default;
};

struct LossPlace {
    LossKind kind = LossKind::other;
    /// Absent for what belongs to no track.
    Boxed<LossTrack> track{};
    /// The range that does not sound as meant. For a clip its placement, so that start and duration
    /// are those of the event, if it became one; for an effect, selector, scope or other segment
    /// that segment; for a dissolve its overlap; for a transition played as a cut its own extent
    /// around the cut, which may begin before the timeline does; for a track all of it. A nested
    /// segment beside a cut is as long as it says itself, everything else as long as it was walked.
    /// Absent for a track that cannot be measured.
    std::optional<LossRange> range{};
    /// Where the cut lies, in seconds from the timeline's zero; of transitionAsCut only.
    std::optional<AAFRational> cut{};
    /// The Source Clip of the composition that is concerned; none where the loss is not one clip's.
    /// Audio that could not be taken out belongs to the first clip that asked for it.
    OMFObject clip = OMFObject::none;
    /// As events name their clips.
    Boxed<std::string> clipName{};

    bool operator==(const LossPlace&) const = default;
};

}  // namespace trellant
