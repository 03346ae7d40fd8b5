// SPDX-License-Identifier: Apache-2.0
#include "segment_writer.h"

#include "dictionary.h"
#include "sequence_length.h"
#include "tagged_values.h"

#include <trellant/aaf/errors.h>

#include <algorithm>
#include <iterator>
#include <set>

namespace trellant::aaf {

namespace {

Class outermost(const std::vector<OperationGroup>& groups, Class inner) {
    return groups.empty() ? inner : Class::operationGroup;
}

/// Of the object that a component becomes, or of the outermost one around it.
struct StoredClass {
    Class operator()(const Sequence& sequence) const {
        return outermost(sequence.operationGroups, Class::sequence);
    }
    Class operator()(const SourceClip& clip) const {
        return outermost(clip.operationGroups, Class::sourceClip);
    }
    Class operator()(const Timecode&) const { return Class::timecode; }
    Class operator()(const Filler&) const { return Class::filler; }
    Class operator()(const Transition&) const { return Class::transition; }
};

}  // namespace

void SegmentWriter::writeSegment(ObjectWriter& slot, const Segment& segment) {
    const Storage storage =
        slot.strongReference(Property::mobSlotSegment, std::visit(StoredClass(), segment));
    std::visit([this, storage](const auto& one) { write(storage, one); }, segment);
}

void SegmentWriter::writeMarkers(ObjectWriter& slot,
                                 const std::vector<DescriptiveMarker>& markers) {
    ObjectWriter object(file_, slot.strongReference(Property::mobSlotSegment, Class::sequence));
    writeComponent(object, dataKind_, extentOf(markers));
    ObjectList list = object.strongVector(Property::sequenceComponents, markers.size());
    object.finish();
    for (const DescriptiveMarker& marker : markers) {
        write(list.add(Class::descriptiveMarker), marker);
    }
}

void SegmentWriter::writeComponent(ObjectWriter& object, DataKind dataKind, std::int64_t length) {
    if (length < 0) {
        throw AafError(AafError::LengthOutOfRange{});
    }
    object.weakReference(Property::componentDataDefinition, Target::dataDefinitions,
                         idOf(dataKind));
    object.i64(Property::componentLength, length);
}

void SegmentWriter::writeOperation(ObjectWriter& object, const OperationGroup& group,
                                   std::int64_t length) {
    writeComponent(object, dataKind_, length);
    object.weakReference(Property::operationGroupOperation, Target::operationDefinitions,
                         idOf(group.operation));
    writeParameters(object, group.parameters);
    writeTaggedValues(file_, object, Property::componentComponentAttributeList,
                      group.componentAttributes);
}

Storage SegmentWriter::writeAround(Storage storage, const std::vector<OperationGroup>& groups,
                                   std::int64_t length, Class inner) {
    for (auto group = groups.rbegin(); group != groups.rend(); ++group) {
        ObjectWriter object(file_, storage);
        writeOperation(object, *group, length);
        ObjectList inputs = object.strongVector(Property::operationGroupInputSegments, 1);
        object.finish();
        storage = inputs.add(std::next(group) == groups.rend() ? inner : Class::operationGroup);
    }
    return storage;
}

void SegmentWriter::write(Storage storage, const Sequence& sequence) {
    const std::int64_t length = lengthOf(sequence.components);
    ObjectWriter object(file_,
                        writeAround(storage, sequence.operationGroups, length, Class::sequence));
    writeComponent(object, dataKind_, length);
    ObjectList list = object.strongVector(Property::sequenceComponents, sequence.components.size());
    object.finish();
    for (const Component& component : sequence.components) {
        const Storage place = list.add(std::visit(StoredClass(), component));
        std::visit([&](const auto& one) { write(place, one); }, component);
    }
}

void SegmentWriter::write(Storage storage, const SourceClip& clip) {
    ObjectWriter object(file_,
                        writeAround(storage, clip.operationGroups, clip.length, Class::sourceClip));
    writeComponent(object, dataKind_, clip.length);
    object.mobID(Property::sourceReferenceSourceID, clip.sourceID);
    object.u32(Property::sourceReferenceSourceMobSlotID, clip.sourceMobSlotID);
    object.i64(Property::sourceClipStartTime, clip.startTime);
    object.finish();
}

void SegmentWriter::write(Storage storage, const Timecode& timecode) {
    ObjectWriter object(file_, storage);
    writeComponent(object, DataKind::timecode, timecode.length);
    object.i64(Property::timecodeStart, timecode.start);
    object.u16(Property::timecodeFPS, timecode.fps);
    object.boolean(Property::timecodeDrop, timecode.drop);
    object.finish();
}

void SegmentWriter::write(Storage storage, const Filler& filler) {
    ObjectWriter object(file_, storage);
    writeComponent(object, dataKind_, filler.length);
    object.finish();
}

void SegmentWriter::write(Storage storage, const Transition& transition) {
    ObjectWriter object(file_, storage);
    writeComponent(object, dataKind_, transition.length);
    ObjectWriter group(
        file_, object.strongReference(Property::transitionOperationGroup, Class::operationGroup));
    object.i64(Property::transitionCutPoint, transition.cutPoint);
    object.finish();
    writeOperation(group, transition.operationGroup, transition.length);
    group.finish();
}

void SegmentWriter::write(Storage storage, const DescriptiveMarker& marker) {
    ObjectWriter object(file_, storage);
    object.weakReference(Property::componentDataDefinition, Target::dataDefinitions,
                         idOf(dataKind_));
    if (marker.length) {
        object.i64(Property::componentLength, *marker.length);
    }
    object.i64(Property::eventPosition, marker.position);
    object.text(Property::eventComment, marker.comment);
    if (marker.user) {
        object.text(Property::commentMarkerUser, *marker.user);
    }
    if (marker.colour) {
        object.data(Property::commentMarkerColor, ValueBytes()
                                                      .u16(marker.colour->red)
                                                      .u16(marker.colour->green)
                                                      .u16(marker.colour->blue));
    }
    if (!marker.describedSlotIDs.empty()) {
        const std::set<std::uint32_t> slotIDs(marker.describedSlotIDs.begin(),
                                              marker.describedSlotIDs.end());
        ValueBytes slots;
        for (const std::uint32_t slotID : slotIDs) {
            slots.u32(slotID);
        }
        object.data(Property::descriptiveMarkerDescribedSlots, slots);
    }
    object.finish();
}

void SegmentWriter::writeParameters(ObjectWriter& group, const std::vector<Parameter>& parameters) {
    if (parameters.empty()) {
        return;
    }
    std::vector<AUID> names;
    std::transform(parameters.begin(), parameters.end(), std::back_inserter(names),
                   [](const Parameter& parameter) { return idOf(parameter.definition); });
    // The types call this a vector; every file has it as a set, told apart as definitions are.
    ObjectList list = group.strongSet(Property::operationGroupParameters,
                                      Property::definitionObjectIdentification, names);
    for (const Parameter& parameter : parameters) {
        const bool varies = std::holds_alternative<VaryingValue>(parameter.value);
        writeValue(list.add(varies ? Class::varyingValue : Class::constantValue), parameter);
    }
}

void SegmentWriter::writeValue(Storage storage, const Parameter& parameter) {
    ObjectWriter object(file_, storage);
    object.auid(Property::parameterDefinition, idOf(parameter.definition));
    if (const auto* constant = std::get_if<Rational>(&parameter.value)) {
        object.indirectRational(Property::constantValueValue, *constant);
        object.finish();
        return;
    }
    const auto& varying = std::get<VaryingValue>(parameter.value);
    object.weakReference(Property::varyingValueInterpolation, Target::interpolationDefinitions,
                         idOf(varying.interpolation));
    ObjectList points = object.strongVector(Property::varyingValuePointList, varying.points.size());
    object.finish();
    for (const ControlPoint& point : varying.points) {
        ObjectWriter stored(file_, points.add(Class::controlPoint));
        stored.indirectRational(Property::controlPointValue, point.value);
        stored.rational(Property::controlPointTime, point.time);
        stored.finish();
    }
}

}  // namespace trellant::aaf
