// SPDX-License-Identifier: Apache-2.0
// A sequence: components one after the other, with transitions between them. A plain linear
// dissolve overlaps its neighbours and becomes their fades; any other transition is played as the
// cut that it names, its neighbours trimmed to the cut point.
#include "fades.h"
#include "segment_walk.h"

#include <algorithm>

namespace trellant {

namespace {

/// Looking whether a path was recorded before, for each level of it.
constexpr std::uint64_t stepsOfPathLevel = 4;

AAFRational seconds(std::int64_t editUnits, const AAFRational& rate) {
    return AAFRational(editUnits) / rate;
}

std::int64_t atLeastZero(std::optional<std::int64_t> value) {
    return std::max<std::int64_t>(value.value_or(0), 0);
}

std::int64_t shortened(std::int64_t length, std::int64_t trim) {
    return length > trim ? length - trim : 0;
}

}  // namespace

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

SegmentWalk::Transition SegmentWalk::readTransition(OMFObject transition, const AAFRational& rate) {
    Transition result{.object = transition};
    if (dissolves_.isSimpleLinear(transition)) {
        result.dissolve = lengthSeconds(transition, rate);
    } else {
        result.headTrim = atLeastZero(reads_.int64(transition, {OMFProperty::transitionCutPoint}));
        result.tailTrim = shortened(lengthEditUnits(transition), result.headTrim);
    }
    return result;
}

std::optional<MappingNotes::RecordIndex> SegmentWalk::reportCut(const Transition* transition,
                                                                const WalkPlace& place) {
    if (transition == nullptr || transition->dissolve) {
        return std::nullopt;
    }
    reads_.countSteps(stepsOfPathLevel * (static_cast<std::uint64_t>(place.depth) + 1));
    if (onlyCounts()) {
        return std::nullopt;
    }
    return notes_->addUnsupportedOncePerPath(
        {.kind = LossKind::transitionAsCut},
        "OMF Transition treated as the spec-defined cut; transition effect itself is not "
        "reproduced",
        ObjectPath(place.path, "TRAN", transition->object));
}

void SegmentWalk::placeCut(std::optional<MappingNotes::RecordIndex> record,
                           const Transition& transition, const AAFRational& position,
                           const AAFRational& rate) {
    if (record) {
        notes_->placeCut(*record, position,
                         {position - seconds(transition.headTrim, rate),
                          seconds(transition.headTrim + transition.tailTrim, rate)});
    }
}

SegmentWalk::Component SegmentWalk::readComponent(OMFObject component, std::size_t index,
                                                  const Transition* incoming,
                                                  const Transition* outgoing,
                                                  const WalkPlace& place) {
    Component result{.object = component, .index = index, .position = place.timelineBase};
    if (incoming != nullptr) {
        result.headTrim = incoming->headTrim;
        result.dissolveIn = incoming->dissolve;
    }
    if (outgoing != nullptr) {
        result.tailTrim = outgoing->tailTrim;
        result.dissolveOut = outgoing->dissolve;
    }
    if (result.dissolveIn) {
        result.position = result.position - *result.dissolveIn;
    }
    result.effectiveLength =
        shortened(shortened(lengthEditUnits(component), result.headTrim), result.tailTrim);
    if (const auto record = reportCut(incoming, place)) {
        placeCut(record, *incoming, result.position, place.rate);
    }
    result.cutAtEnd = reportCut(outgoing, place);
    return result;
}

void SegmentWalk::placeClip(const Component& component, const WalkPlace& place,
                            EventDrafts& drafts) {
    const LossRange placed{component.position, seconds(component.effectiveLength, place.rate)};
    auto fadeIn =
        clipFade(reads_, *notes_, component.object, AAFFade::Direction::fadeIn, place.rate, placed);
    auto fadeOut = clipFade(reads_, *notes_, component.object, AAFFade::Direction::fadeOut,
                            place.rate, placed);
    const auto combine = [&](Boxed<AAFFade>& own, const std::optional<AAFRational>& dissolve,
                             AAFFade::Direction direction, const char* conflict) {
        if (!dissolve) {
            return;
        }
        if (own) {
            report({LossKind::fadeConflict, placed, component.object}, conflict,
                   ObjectPath(place.path, "component", component.index));
        } else {
            own = dissolveFade(direction, *dissolve);
        }
    };
    combine(fadeIn, component.dissolveIn, AAFFade::Direction::fadeIn,
            "SourceClip fade-in combined with an OMF dissolve cannot be losslessly collapsed to "
            "one fade");
    combine(fadeOut, component.dissolveOut, AAFFade::Direction::fadeOut,
            "SourceClip fade-out combined with an OMF dissolve cannot be losslessly collapsed to "
            "one fade");
    drafts.push_back({.object = component.object,
                      .timelineStart = placed.start,
                      .duration = placed.duration,
                      .sourceTrimStart = seconds(component.headTrim, place.rate),
                      .fadeIn = std::move(fadeIn),
                      .fadeOut = std::move(fadeOut)});
}

AAFRational SegmentWalk::placeNested(const Component& component, const WalkPlace& place,
                                     EventDrafts& drafts) {
    const ObjectPath path(place.path, "component", component.index);
    if (component.headTrim != 0 || component.tailTrim != 0) {
        report(
            {.kind = LossKind::nestedTrimNotApplied,
             .range = LossRange{component.position, lengthSeconds(component.object, place.rate)}},
            "cut-point trim around nested segment requires effect-aware rendering", path);
    }
    const auto first = static_cast<std::ptrdiff_t>(drafts.size());
    // Two levels per step on purpose, one for the sequence and one for the step: it decides at
    // which depth a composition is cut off, and what is then reported.
    const auto duration =
        flatten(component.object,
                {place.rate, component.position, path, place.scopes, place.depth + 2}, drafts);
    const auto nested = drafts.begin() + first;
    if (component.dissolveIn || component.dissolveOut) {
        reads_.countSteps(2 * static_cast<std::uint64_t>(drafts.end() - nested));
    }
    if (component.dissolveIn) {
        const auto earliest = std::min_element(nested, drafts.end(),
                                               [](const EventDraft& left, const EventDraft& right) {
                                                   return left.timelineStart < right.timelineStart;
                                               });
        if (earliest != drafts.end() && !earliest->fadeIn) {
            earliest->fadeIn = dissolveFade(AAFFade::Direction::fadeIn, *component.dissolveIn);
        } else {
            report({.kind = LossKind::nestedDissolve,
                    .range = LossRange{component.position, *component.dissolveIn}},
                   "dissolve into nested segment cannot be losslessly collapsed", path);
        }
    }
    if (component.dissolveOut) {
        const auto latest = std::max_element(
            nested, drafts.end(), [](const EventDraft& left, const EventDraft& right) {
                return left.timelineStart + left.duration < right.timelineStart + right.duration;
            });
        if (latest != drafts.end() && !latest->fadeOut) {
            latest->fadeOut = dissolveFade(AAFFade::Direction::fadeOut, *component.dissolveOut);
        } else {
            report({.kind = LossKind::nestedDissolve,
                    .range = LossRange{component.position + duration - *component.dissolveOut,
                                       *component.dissolveOut}},
                   "dissolve out of nested segment cannot be losslessly collapsed", path);
        }
    }
    return duration;
}

AAFRational SegmentWalk::flattenSequence(OMFObject sequence, const WalkPlace& place,
                                         EventDrafts& drafts) {
    const ObjectPath path(place.path, "SEQU", sequence);
    const auto components = reads_.objectRefs(sequence, {OMFProperty::sequenceComponents});
    const auto isTransition = [&](std::size_t index) {
        return index < components.size() &&
               reads_.classOf(components[index]) == OMFClass::transition;
    };
    auto position = place.timelineBase;
    std::optional<Transition> incoming;
    for (std::size_t i = 0; i < components.size(); ++i) {
        if (isTransition(i)) {
            countVisit();
            reportRemarks(components[i], position,
                          {place.rate, position, path, place.scopes, place.depth});
            if (!isTransition(i + 1) && (i == 0 || isTransition(i - 1))) {
                // Not read yet as the outgoing transition of a component before it.
                incoming = readTransition(components[i], place.rate);
            }
            continue;
        }
        std::optional<Transition> outgoing;
        if (isTransition(i + 1)) {
            outgoing = readTransition(components[i + 1], place.rate);
        }
        const WalkPlace here{place.rate, position, path, place.scopes, place.depth};
        const auto component = readComponent(components[i], i, incoming ? &*incoming : nullptr,
                                             outgoing ? &*outgoing : nullptr, here);
        const auto kind = reads_.classOf(component.object);
        if (kind == OMFClass::sourceClip || kind == OMFClass::filler) {
            countVisit();
            reportRemarks(component.object, component.position, here);
            if (kind == OMFClass::sourceClip && !onlyCounts()) {
                placeClip(component, here, drafts);
            }
            position = component.position + seconds(component.effectiveLength, place.rate);
        } else {
            position = component.position + placeNested(component, here, drafts);
        }
        if (outgoing) {
            placeCut(component.cutAtEnd, *outgoing, position, place.rate);
        }
        incoming = outgoing;
    }
    return position - place.timelineBase;
}

}  // namespace trellant
