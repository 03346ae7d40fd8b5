// SPDX-License-Identifier: Apache-2.0
#include "clip_loss.h"

namespace trellant {

namespace {

std::string sourceMob(const OMFUID& mobID) {
    return "Source Mob " + mobID.description();
}

struct Reason {
    using Text = std::optional<std::string>;

    Text operator()(const ClipWithoutSource&) const {
        return "the Source Clip carries no Source ID";
    }
    Text operator()(const ClipSourceMissing& loss) const {
        return "the referenced " + sourceMob(loss.mobID) + " is not contained in the file";
    }
    Text operator()(const ClipSourceTrackMissing& loss) const {
        return sourceMob(loss.mobID) + " has no track " + std::to_string(loss.trackID);
    }
    Text operator()(const ClipSourceCycle&) const { return std::nullopt; }
    Text operator()(const ClipSourceDeadEnd&) const { return std::nullopt; }
    Text operator()(const ClipMediaUndescribed&) const {
        return "the Source Mob carries no media descriptor";
    }
};

struct Kind {
    LossKind operator()(const ClipWithoutSource&) const { return LossKind::clipWithoutSource; }
    LossKind operator()(const ClipSourceMissing&) const { return LossKind::clipSourceMissing; }
    LossKind operator()(const ClipSourceTrackMissing&) const {
        return LossKind::clipSourceTrackMissing;
    }
    LossKind operator()(const ClipSourceCycle&) const { return LossKind::clipUnresolved; }
    LossKind operator()(const ClipSourceDeadEnd&) const { return LossKind::clipUnresolved; }
    LossKind operator()(const ClipMediaUndescribed&) const {
        return LossKind::clipMediaUndescribed;
    }
};

/// What is said before the record that the clip is dropped.
struct Explanation {
    MappingNotes& notes;

    void operator()(const ClipWithoutSource&) const {}
    void operator()(const ClipSourceMissing& loss) const {
        notes.diagnose("Unresolved " + sourceMob(loss.mobID) + " for SCLP " +
                       std::to_string(number(loss.clip)));
    }
    void operator()(const ClipSourceTrackMissing& loss) const {
        notes.diagnose(sourceMob(loss.mobID) + " has no TrackID " + std::to_string(loss.trackID));
    }
    void operator()(const ClipSourceCycle& loss) const {
        notes.addUnsupported(notes.lossOfClip(LossKind::sourceCycle),
                             "source reference cycle/depth limit", ObjectPath("SCLP", loss.clip));
    }
    void operator()(const ClipSourceDeadEnd& loss) const {
        notes.addUnsupported(notes.lossOfClip(LossKind::sourceDeadEnd),
                             sourceMob(loss.mobID) + " TrackID " + std::to_string(loss.trackID) +
                                 " resolves through " + loss.segmentClass.value_or("no segment") +
                                 ", not a direct Source Clip",
                             ObjectPath("SCLP", loss.clip));
    }
    void operator()(const ClipMediaUndescribed&) const {}
};

}  // namespace

std::optional<std::string> verlustGrund(const ClipLoss& loss) {
    return std::visit(Reason{}, loss);
}

void recordDropped(const ClipLoss& loss, const ObjectPath& at, MappingNotes& notes) {
    std::visit(Explanation{notes}, loss);
    notes.addLoss(
        notes.lossOfClip(std::visit(Kind{}, loss)),
        "audio clip dropped: " + verlustGrund(loss).value_or("the source could not be resolved"),
        at);
}

}  // namespace trellant
