// SPDX-License-Identifier: Apache-2.0
// Kinds of losses: what a record of the timeline says in words of the interchange format, as a case
// that a program can tell apart and a person's language can name.
#pragma once

#include <trellant/json/named_enum.h>

#include <array>
#include <string_view>

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
    /// Of OMF 1.x: an effect on material that is played without it.
    effectNotApplied,
    /// Of OMF 1.x: a value that cannot be read, or whose meaning is not known.
    olderModelUnknown,

    other
};

template <>
struct EnumNames<LossKind> {
    static constexpr std::array<std::string_view, 32> names{"trackWithoutEditRate",
                                                            "trackWithoutAudio",
                                                            "clipWithoutSource",
                                                            "clipSourceMissing",
                                                            "clipSourceTrackMissing",
                                                            "clipMediaUndescribed",
                                                            "clipUnresolved",
                                                            "sourceCycle",
                                                            "sourceDeadEnd",
                                                            "essenceNotExtracted",
                                                            "nestingTooDeep",
                                                            "operationNotRendered",
                                                            "unknownComponent",
                                                            "selectorWithoutSelection",
                                                            "emptyNestedScope",
                                                            "scopeReferenceBroken",
                                                            "effectNotRendered",
                                                            "effectUnnamed",
                                                            "effectWithoutInput",
                                                            "transitionAsCut",
                                                            "nestedTrimNotApplied",
                                                            "nestedDissolve",
                                                            "fadeConflict",
                                                            "unknownFadeCurve",
                                                            "effectControlUnreadable",
                                                            "panAutomation",
                                                            "panDiffers",
                                                            "nestedGainAutomation",
                                                            "unknownAutomationCurve",
                                                            "effectNotApplied",
                                                            "olderModelUnknown",
                                                            "other"};
};

}  // namespace trellant
