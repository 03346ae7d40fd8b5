// SPDX-License-Identifier: Apache-2.0
#include "segment_walk.h"

#include "fades.h"

#include <trellant/io/errors.h>

#include <algorithm>

namespace trellant {

namespace {

/// What a visit takes beside its reads: its place in time, mostly.
constexpr std::uint64_t stepsOfVisit = 4;

}  // namespace

void SegmentWalk::countVisit() {
    ++visits_;
    reads_.checkWork();
    reads_.countSteps(stepsOfVisit);
    if (visits_ > maximumVisits) {
        throw OMFIOError::unsupported("composition expands to more than " +
                                      std::to_string(maximumVisits) + " segments");
    }
    if (visits_ == visitsBeforeCheck && checkExpansion_) {
        checkExpansion_();
    }
}

void SegmentWalk::report(const Loss& loss, std::string_view message, const ObjectPath& at) {
    if (!onlyCounts()) {
        notes_->addUnsupported(loss, std::string(message), at);
    }
}

void SegmentWalk::reportRemarks(OMFObject segment, const AAFRational& start,
                                const WalkPlace& place) {
    const auto remarks = reads_.remarksOf(segment);
    if (remarks.empty() || onlyCounts()) {
        return;
    }
    const bool isClip = reads_.classOf(segment) == OMFClass::sourceClip;
    Loss loss{.clip = isClip ? segment : OMFObject::none};
    // Sequences have no length of their own.
    if (const auto duration = lengthSeconds(segment, place.rate); duration > AAFRational::zero()) {
        loss.range = LossRange{start, duration};
    }
    notes_->addRemarks(loss, remarks, ObjectPath(place.path, className(segment), segment));
}

AAFRational SegmentWalk::silence(LossKind kind, std::string_view message, const ObjectPath& at,
                                 OMFObject segment, const WalkPlace& place) {
    const auto duration = lengthSeconds(segment, place.rate);
    report({.kind = kind, .range = LossRange{place.timelineBase, duration}}, message, at);
    return duration;
}

std::int64_t SegmentWalk::lengthEditUnits(OMFObject component) const {
    return std::max<std::int64_t>(
        reads_.int64(component, {OMFProperty::componentLength}).value_or(0), 0);
}

AAFRational SegmentWalk::lengthSeconds(OMFObject component, const AAFRational& rate) const {
    return AAFRational(lengthEditUnits(component)) / rate;
}

std::string_view SegmentWalk::className(OMFObject object) const {
    return reads_.classID(object).value_or("????");
}

SegmentWalk::SharedList SegmentWalk::scopeSlots(OMFObject scope) {
    if (const auto known = longLists_.find(scope); known != longLists_.end()) {
        return known->second;
    }
    auto slots = std::make_shared<const std::vector<OMFObject>>(
        reads_.objectRefs(scope, {OMFProperty::nestedScopeSlots}));
    if (slots->size() > BoundedReads::longList) {
        longLists_.emplace(scope, slots);
    }
    return slots;
}

AAFRational SegmentWalk::flatten(OMFObject segment, const WalkPlace& place, EventDrafts& drafts) {
    countVisit();
    if (place.depth > maximumDepth) {
        return silence(LossKind::nestingTooDeep, "composition nesting exceeds depth limit",
                       place.path, segment, place);
    }
    reportRemarks(segment, place.timelineBase, place);
    const auto kind = reads_.classOf(segment);
    switch (kind) {
        case OMFClass::sourceClip: {
            const auto duration = lengthSeconds(segment, place.rate);
            if (onlyCounts()) {
                return duration;
            }
            const LossRange placed{place.timelineBase, duration};
            auto fadeIn =
                clipFade(reads_, *notes_, segment, AAFFade::Direction::fadeIn, place.rate, placed);
            auto fadeOut =
                clipFade(reads_, *notes_, segment, AAFFade::Direction::fadeOut, place.rate, placed);
            drafts.push_back({.object = segment,
                              .timelineStart = place.timelineBase,
                              .duration = duration,
                              .fadeIn = std::move(fadeIn),
                              .fadeOut = std::move(fadeOut)});
            return duration;
        }
        case OMFClass::sequence:
            return flattenSequence(segment, place, drafts);
        case OMFClass::selector:
            return flattenSelector(segment, place, drafts);
        case OMFClass::effect: {
            const ObjectPath path(place.path, "EFFE", segment);
            return flattenEffect(
                segment, {place.rate, place.timelineBase, path, place.scopes, place.depth + 1},
                drafts);
        }
        case OMFClass::nestedScope:
            return flattenNestedScope(segment, place, drafts);
        case OMFClass::scopeReference:
            return flattenScopeReference(segment, place, drafts);
        case OMFClass::filler:
        case OMFClass::timecode:
        case OMFClass::constantValue:
        case OMFClass::varyingValue:
        case OMFClass::edgecode:
            break;
        case OMFClass::editRateConverter:
        case OMFClass::mediaGroup:
            return silence(LossKind::operationNotRendered,
                           std::string(className(segment)) +
                               " composition operation is not rendered by TrellantOMFReader",
                           ObjectPath(place.path, className(segment), segment), segment, place);
        case OMFClass::header:
        case OMFClass::compositionMob:
        case OMFClass::masterMob:
        case OMFClass::sourceMob:
        case OMFClass::trackMob:
        case OMFClass::descriptorMob:
        case OMFClass::waveMedia:
        case OMFClass::aifcMedia:
        case OMFClass::tiffMedia:
        case OMFClass::imageMedia:
        case OMFClass::mediaData:
        case OMFClass::waveDescriptor:
        case OMFClass::aifcDescriptor:
        case OMFClass::macLocator:
        case OMFClass::transition:
        case OMFClass::other:
        case OMFClass::absent:
            return silence(LossKind::unknownComponent,
                           "unknown OMF component class " + std::string(className(segment)),
                           ObjectPath(place.path, "", segment), segment, place);
    }
    return lengthSeconds(segment, place.rate);
}

AAFRational SegmentWalk::flattenSelector(OMFObject selector, const WalkPlace& place,
                                         EventDrafts& drafts) {
    const ObjectPath path(place.path, "SLCT", selector);
    if (const auto selected = reads_.objectRef(selector, {OMFProperty::selectorSelected})) {
        return flatten(*selected,
                       {place.rate, place.timelineBase, path, place.scopes, place.depth + 1},
                       drafts);
    }
    return silence(LossKind::selectorWithoutSelection, "selector has no readable selected segment",
                   path, selector, place);
}

AAFRational SegmentWalk::flattenNestedScope(OMFObject scope, const WalkPlace& place,
                                            EventDrafts& drafts) {
    const ObjectPath path(place.path, "NEST", scope);
    const auto slots = scopeSlots(scope);
    if (slots->empty()) {
        return silence(LossKind::emptyNestedScope, "NestedScope has no slots", path, scope, place);
    }
    const ScopeFrame frame{.segments = slots.get(),
                           .currentIndex = static_cast<std::int64_t>(slots->size()) - 1,
                           .outer = place.scopes};
    return flatten(slots->back(), {place.rate, place.timelineBase, path, &frame, place.depth + 1},
                   drafts);
}

AAFRational SegmentWalk::flattenScopeReference(OMFObject reference, const WalkPlace& place,
                                               EventDrafts& drafts) {
    const ObjectPath path(place.path, "SREF", reference);
    const auto outward = reads_.int32(reference, {OMFProperty::scopeReferenceScope}).value_or(0);
    const ScopeFrame* frame = outward < 0 ? nullptr : place.scopes;
    for (std::int32_t step = 0; step < outward && frame != nullptr; ++step) {
        frame = frame->outer;
    }
    if (frame == nullptr) {
        return silence(LossKind::scopeReferenceBroken,
                       "ScopeReference points above the outermost scope", path, reference, place);
    }
    const std::int64_t target =
        frame->currentIndex -
        reads_.int32(reference, {OMFProperty::scopeReferenceSlot}).value_or(0);
    const auto& segments = *frame->segments;
    if (target < 0 || target >= static_cast<std::int64_t>(segments.size()) ||
        segments[static_cast<std::size_t>(target)] == OMFObject::none) {
        return silence(LossKind::scopeReferenceBroken,
                       "ScopeReference target slot " + std::to_string(target) + " does not exist",
                       path, reference, place);
    }
    const ScopeFrame moved{.segments = &segments, .currentIndex = target, .outer = frame->outer};
    return flatten(segments[static_cast<std::size_t>(target)],
                   {place.rate, place.timelineBase, path, &moved, place.depth + 1}, drafts);
}

}  // namespace trellant
