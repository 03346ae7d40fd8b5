// Where on the timeline a loss lies. A record of the timeline names the object at fault and
// nothing else; a person asks for track, clip and time. A mapping that is told to
// (MappingPlaces::placesLosses) keeps both side by side.
#pragma once

#include <trellant/base/boxed.h>
#include <trellant/model/rational.h>
#include <trellant/omf/values.h>

#include <cstdint>
#include <optional>
#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// What kind of thing was lost, for those who say it in their own words.
enum class LossKind {
    // Dropped tracks.
    /// A track whose edit rate is missing, zero or negative: it cannot be measured.
    trackWithoutEditRate,
    /// A track none of whose clips leads to audio.
    trackWithoutAudio,

    // Dropped clips.
    /// The clip names no source.
    clipWithoutSource,
    /// The clip's source is not in the file.
    clipSourceMissing,
    /// The clip's source is there, the track of it that the clip plays is not.
    clipSourceTrackMissing,
    /// The clip's source does not describe any media.
    clipMediaUndescribed,
    /// The clip's sources lead to no audio; a record of kind sourceCycle or sourceDeadEnd before
    /// this one says why.
    clipUnresolved,
    /// The clip's sources refer to one another in a circle, or are too many.
    sourceCycle,
    /// The clip's sources end at something that is no audio file.
    sourceDeadEnd,

    // Kept, but without a file.
    /// The audio lies in the file and could not be taken out.
    essenceNotExtracted,

    // Material that is silent, its length kept.
    nestingTooDeep,
    /// A change of edit rate or a group of alternative media.
    operationNotRendered,
    unknownComponent,
    selectorWithoutSelection,
    emptyNestedScope,
    /// A reference to another track of the scope that does not exist.
    scopeReferenceBroken,
    effectNotRendered,
    /// The effect does not say which one it is.
    effectUnnamed,
    effectWithoutInput,

    // Material that is kept, but sounds different.
    transitionAsCut,
    /// The trim that a cut asks for beside nested material is not applied.
    nestedTrimNotApplied,
    /// A dissolve into or out of nested material is not applied.
    nestedDissolve,
    /// A clip has a fade of its own where a dissolve wants one.
    fadeConflict,
    unknownFadeCurve,
    /// The value of a gain or pan cannot be read.
    effectControlUnreadable,
    /// A pan that moves.
    panAutomation,
    /// The clips of a track have different pans.
    panDiffers,
    /// A gain that moves within another gain that moves.
    nestedGainAutomation,
    unknownAutomationCurve,

    other
};

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
