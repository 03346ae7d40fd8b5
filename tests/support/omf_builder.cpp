// SPDX-License-Identifier: Apache-2.0
// The document, its segments, slots and attributes.
#include <array>
#include <trellant_testing/omf_builder.h>

namespace trellant::testing {

namespace {

/// Names that workstations register before they write anything, used or not, in this order. So the
/// numbers of an object's properties do not ascend in the order in which it sets them.
constexpr std::array registeredNames{"OMFI:OOBJ:ObjClass",      "OMFI:ATTB:Name",
                                     "OMFI:ATTB:ObjAttribute",  "OMFI:ATTB:StringAttribute",
                                     "OMFI:ATTR:AttrRefs",      "OMFI:CPNT:Attributes",
                                     "OMFI:CPNT:DataKind",      "OMFI:CPNT:Length",
                                     "OMFI:CPNT:Name",          "OMFI:CTLP:Time",
                                     "OMFI:CTLP:Value",         "OMFI:CVAL:Value",
                                     "OMFI:DDEF:DataKindID",    "OMFI:DOSL:PathName",
                                     "OMFI:EDEF:EffectID",      "OMFI:EFFE:EffectKind",
                                     "OMFI:EFFE:EffectSlots",   "OMFI:EFFE:FinalRendering",
                                     "OMFI:ESLT:ArgID",         "OMFI:ESLT:ArgValue",
                                     "OMFI:HEAD:ByteOrder",     "OMFI:HEAD:MediaData",
                                     "OMFI:HEAD:Mobs",          "OMFI:HEAD:PrimaryMobs",
                                     "OMFI:HEAD:Version",       "OMFI:MDAT:MobID",
                                     "OMFI:MDES:Locator",       "OMFI:MDFL:Length",
                                     "OMFI:MDFL:SampleRate",    "OMFI:MOBJ:MobID",
                                     "OMFI:MOBJ:Name",          "OMFI:MOBJ:Slots",
                                     "OMFI:MSLT:EditRate",      "OMFI:MSLT:Segment",
                                     "OMFI:MSLT:TrackDesc",     "OMFI:NEST:Slots",
                                     "OMFI:SCLP:FadeInLength",  "OMFI:SCLP:FadeInType",
                                     "OMFI:SCLP:FadeOutLength", "OMFI:SCLP:FadeOutType",
                                     "OMFI:SCLP:SourceID",      "OMFI:SCLP:SourceTrackID",
                                     "OMFI:SCLP:StartTime",     "OMFI:SEQU:Components",
                                     "OMFI:SLCT:Selected",      "OMFI:SMOB:MediaDescription",
                                     "OMFI:SREF:RelativeScope", "OMFI:SREF:RelativeSlot",
                                     "OMFI:TCCP:Drop",          "OMFI:TCCP:FPS",
                                     "OMFI:TCCP:Start",         "OMFI:TRAN:CutPoint",
                                     "OMFI:TRAN:Effect",        "OMFI:TRKD:Origin",
                                     "OMFI:TRKD:PhysicalTrack", "OMFI:TRKD:TrackID",
                                     "OMFI:TRKD:TrackName",     "OMFI:VVAL:Interpolation",
                                     "OMFI:VVAL:PointList"};

}  // namespace

OmfBuilder::OmfBuilder(const Options& options) : options_(options), container_(options.container) {
    if (options.container.layout == FileLayout::real) {
        for (const std::string_view name : registeredNames) {
            container_.propertyID(name);
        }
    }
    ObjectBuilder header = object("HEAD").bytes("OMFI:HEAD:Version", hex("02 00"));
    head_ = header;
    if (options.writesByteOrder) {
        const bool isLittle = options.valueOrder == OMFByteOrder::little;
        header.bytes("OMFI:HEAD:ByteOrder", bytesOf(isLittle ? "II" : "MM"));
    }
}

ObjectBuilder OmfBuilder::at(ObjectID id) {
    return ObjectBuilder(container_, id, options_.valueOrder);
}

ObjectBuilder OmfBuilder::classless() {
    return at(container_.newObject());
}

ObjectBuilder OmfBuilder::object(std::string_view classID) {
    return classless().bytes("OMFI:OOBJ:ObjClass", bytesOf(classID));
}

ObjectBuilder OmfBuilder::dataKind(std::string_view id) {
    const auto known = dataKinds_.find(id);
    if (known != dataKinds_.end()) {
        return at(known->second);
    }
    ObjectBuilder definition = object("DDEF").string("OMFI:DDEF:DataKindID", id);
    dataKinds_.emplace(id, definition);
    return definition;
}

ObjectBuilder OmfBuilder::component(std::string_view classID, std::int64_t length) {
    ObjectBuilder component = object(classID).position("OMFI:CPNT:Length", length);
    if (segmentKind_) {
        component.ref("OMFI:CPNT:DataKind", dataKind(*segmentKind_));
    }
    lengths_[component] = length;
    return component;
}

std::int64_t OmfBuilder::lengthOf(ObjectID segment) const {
    const auto known = lengths_.find(segment);
    return known == lengths_.end() ? 0 : known->second;
}

ObjectBuilder OmfBuilder::segment(std::string_view classID, std::int64_t length) {
    return component(classID, length);
}

ObjectBuilder OmfBuilder::filler(std::int64_t length) {
    return component("FILL", length);
}

ObjectBuilder OmfBuilder::clip(const ClipSpec& given) {
    ObjectBuilder clip = component("SCLP", given.length)
                             .uid("OMFI:SCLP:SourceID", given.source)
                             .uint32("OMFI:SCLP:SourceTrackID", given.track)
                             .position("OMFI:SCLP:StartTime", given.start);
    const auto setFade = [&](const std::optional<FadeSpec>& fade, std::string_view lengthName,
                             std::string_view typeName) {
        if (fade) {
            clip.position(lengthName, fade->length);
        }
        if (fade && fade->type) {
            clip.int32(typeName, *fade->type);
        }
    };
    setFade(given.fadeIn, "OMFI:SCLP:FadeInLength", "OMFI:SCLP:FadeInType");
    setFade(given.fadeOut, "OMFI:SCLP:FadeOutLength", "OMFI:SCLP:FadeOutType");
    if (given.name) {
        clip.string("OMFI:CPNT:Name", *given.name);
    }
    return clip;
}

ObjectBuilder OmfBuilder::sequence(const std::vector<ObjectID>& components) {
    std::int64_t length = 0;
    for (const ObjectID component : components) {
        length += lengthOf(component);
    }
    return component("SEQU", length).refs("OMFI:SEQU:Components", components);
}

ObjectBuilder OmfBuilder::timecode(std::int16_t fps, bool drop, std::int64_t start,
                                   std::int64_t length) {
    const std::optional<std::string> surrounding = segmentKind_;
    segmentKind_ = "omfi:data:Timecode";
    ObjectBuilder timecode = component("TCCP", length)
                                 .int16("OMFI:TCCP:FPS", fps)
                                 .int16("OMFI:TCCP:Drop", drop ? 1 : 0)
                                 .position("OMFI:TCCP:Start", start);
    segmentKind_ = surrounding;
    return timecode;
}

ObjectBuilder OmfBuilder::selector(ObjectID selected) {
    return component("SLCT", lengthOf(selected)).ref("OMFI:SLCT:Selected", selected);
}

ObjectBuilder OmfBuilder::nestedScope(const std::vector<ObjectID>& slots) {
    return component("NEST", slots.empty() ? 0 : lengthOf(slots.back()))
        .refs("OMFI:NEST:Slots", slots);
}

ObjectBuilder OmfBuilder::scopeReference(std::int64_t length, std::int32_t relativeScope,
                                         std::int32_t relativeSlot) {
    return component("SREF", length)
        .int32("OMFI:SREF:RelativeScope", relativeScope)
        .int32("OMFI:SREF:RelativeSlot", relativeSlot);
}

ObjectBuilder OmfBuilder::track(const TrackSpec& given) {
    ObjectBuilder track = object("TRKD").uint32("OMFI:TRKD:TrackID", given.id);
    if (given.name) {
        track.string("OMFI:TRKD:TrackName", *given.name);
    }
    if (given.physicalTrack) {
        track.int32("OMFI:TRKD:PhysicalTrack", *given.physicalTrack);
    }
    if (given.origin) {
        track.position("OMFI:TRKD:Origin", *given.origin);
    }
    return track;
}

ObjectBuilder OmfBuilder::slot(const SlotSpec& given) {
    ObjectBuilder slot = object("MSLT");
    if (given.editRate) {
        slot.rational("OMFI:MSLT:EditRate", *given.editRate);
    }
    if (given.segment) {
        slot.ref("OMFI:MSLT:Segment", *given.segment);
    }
    if (given.track) {
        slot.ref("OMFI:MSLT:TrackDesc", *given.track);
    }
    return slot;
}

ObjectBuilder OmfBuilder::attribute(std::string_view name, std::optional<std::string> text,
                                    std::optional<ObjectID> object) {
    ObjectBuilder attribute = this->object("ATTB").string("OMFI:ATTB:Name", name);
    if (text) {
        attribute.string("OMFI:ATTB:StringAttribute", *text);
    }
    if (object) {
        attribute.ref("OMFI:ATTB:ObjAttribute", *object);
    }
    return attribute;
}

ObjectBuilder OmfBuilder::attributeList(const std::vector<ObjectID>& attributes) {
    return object("ATTR").refs("OMFI:ATTR:AttrRefs", attributes);
}

ContainerImage OmfBuilder::image() const {
    ContainerBuilder container = container_;
    const auto list = [&](std::string_view property, const std::vector<ObjectID>& objects) {
        if (!objects.empty() && !container.has(head_, property)) {
            container.setReferences(head_, property, objects, options_.valueOrder);
        }
    };
    list("OMFI:HEAD:PrimaryMobs", primaryMobs_);
    list("OMFI:HEAD:Mobs", mobs_);
    list("OMFI:HEAD:MediaData", mediaData_);
    return container.image();
}

}  // namespace trellant::testing
