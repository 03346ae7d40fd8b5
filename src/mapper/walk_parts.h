// What a sequence's walk knows of a transition and of the component between two of them, and what
// an effect's folding knows of the effect.
#pragma once

#include "segment_walk.h"

namespace trellant {

struct SegmentWalk::Transition {
    OMFObject object = OMFObject::none;
    /// Seconds of overlap; absent when the transition is a cut.
    std::optional<AAFRational> dissolve{};
    /// Edit units that a cut takes from the head of the next and the tail of the previous
    /// component.
    std::int64_t headTrim = 0;
    std::int64_t tailTrim = 0;
};

struct SegmentWalk::Component {
    OMFObject object = OMFObject::none;
    std::size_t index = 0;
    /// Edit units.
    std::int64_t headTrim = 0;
    std::int64_t tailTrim = 0;
    std::int64_t effectiveLength = 0;
    /// Seconds.
    std::optional<AAFRational> dissolveIn{};
    std::optional<AAFRational> dissolveOut{};
    /// Seconds from the timeline's zero.
    AAFRational position{};
    /// The record of the transition after it that is played as a cut, to be placed once the
    /// component's end is known.
    std::optional<MappingNotes::RecordIndex> cutAtEnd{};
};

struct SegmentWalk::Effect {
    std::string id{};
    bool isGain = false;
    const EffectArguments& arguments;
    const ObjectPath& path;
    LossRange range{};

    [[nodiscard]] Loss loss(LossKind kind) const { return {.kind = kind, .range = range}; }
};

}  // namespace trellant
