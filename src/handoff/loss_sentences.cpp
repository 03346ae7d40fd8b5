// SPDX-License-Identifier: Apache-2.0

#include <trellant/base/precondition.h>
#include <trellant/handoff/loss_sentences.h>

namespace trellant {

std::string_view plainSentence(LossKind kind) noexcept {
    switch (kind) {
        case LossKind::trackWithoutEditRate:
            return "The track is left out: the file does not say in which units it is counted.";
        case LossKind::trackWithoutAudio:
            return "The track is left out: none of its clips leads to audio.";
        case LossKind::clipWithoutSource:
            return "The clip is left out: it names no audio file.";
        case LossKind::clipSourceMissing:
            return "The clip is left out: its audio file is not described in this OMF file.";
        case LossKind::clipSourceTrackMissing:
            return "The clip is left out: its audio file has no such track.";
        case LossKind::clipMediaUndescribed:
            return "The clip is left out: the OMF file does not describe its audio.";
        case LossKind::clipUnresolved:
            return "The clip is left out: it does not lead to any audio.";
        case LossKind::sourceCycle:
            return "The clip's sources refer to one another in a circle.";
        case LossKind::sourceDeadEnd:
            return "The clip's sources end at something that is no audio file, such as a tape.";
        case LossKind::essenceNotExtracted:
            return "The audio file lies inside the OMF file and could not be taken out.";
        case LossKind::nestingTooDeep:
            return "This stretch is silent: it is nested too deeply.";
        case LossKind::operationNotRendered:
            return "This stretch is silent: a change of rate or a choice of media is not carried "
                   "out.";
        case LossKind::unknownComponent:
            return "This stretch is silent: what it holds is not known.";
        case LossKind::selectorWithoutSelection:
            return "This stretch is silent: of several takes none is chosen.";
        case LossKind::emptyNestedScope:
            return "This stretch is silent: a group of tracks is empty.";
        case LossKind::scopeReferenceBroken:
            return "This stretch is silent: it refers to a track that does not exist.";
        case LossKind::effectNotRendered:
            return "This stretch is silent: the effect on it is not known.";
        case LossKind::effectUnnamed:
            return "This stretch is silent: the file does not say which effect is on it.";
        case LossKind::effectWithoutInput:
            return "This stretch is silent: an effect has nothing to work on.";
        case LossKind::transitionAsCut:
            return "The transition is a plain cut here: its crossfade is gone.";
        case LossKind::nestedTrimNotApplied:
            return "A cut beside grouped clips is not trimmed: they may overlap by a moment.";
        case LossKind::nestedDissolve:
            return "A crossfade with grouped clips is gone.";
        case LossKind::fadeConflict:
            return "The clip keeps its own fade: the crossfade on top of it is gone.";
        case LossKind::unknownFadeCurve:
            return "The fade's shape is not known: its length is kept.";
        case LossKind::effectControlUnreadable:
            return "A gain or pan setting cannot be read and is not applied.";
        case LossKind::panAutomation:
            return "A moving pan is not carried over.";
        case LossKind::panDiffers:
            return "The clips of this track have different pans: the track has none.";
        case LossKind::nestedGainAutomation:
            return "One of two gain automations on the same clip is not carried over.";
        case LossKind::unknownAutomationCurve:
            return "The shape between automation points is not known.";
        case LossKind::effectNotApplied:
            return "The effect on this is not known: it plays without it.";
        case LossKind::olderModelUnknown:
            return "What this file of OMF 1 says here is not known and is not applied.";
        case LossKind::other:
            return "Something here could not be carried over.";
    }
    preconditionFailure("enumeration value outside its cases");
}

}  // namespace trellant
