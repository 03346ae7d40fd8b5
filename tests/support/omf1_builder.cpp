// SPDX-License-Identifier: Apache-2.0
#include <trellant_testing/omf1_builder.h>
#include <utility>

namespace trellant::testing {

namespace {

constexpr std::int32_t endless = 0x7FFFFFFF;

ContainerBuilder::Options containerOptions(OMFByteOrder order) {
    return {.byteOrder = order, .form = TocForm::v1};
}

}  // namespace

Omf1Builder::Omf1Builder(const Options& options)
    : options_(options), container_(containerOptions(options.container)) {
    head_ = object("HEAD");
    head()
        .bytes("OMFI:ByteOrder", bytesOf(options_.values == OMFByteOrder::big ? "MM" : "II"))
        .bytes("OMFI:Version", hex("01 00"));
}

ObjectBuilder Omf1Builder::at(ObjectID id) {
    return {container_, id, options_.values};
}

ObjectBuilder Omf1Builder::object(std::string_view classID) {
    return at(container_.newObject()).bytes("OMFI:ObjID", bytesOf(classID));
}

void Omf1Builder::ref(ObjectID object, std::string_view property, ObjectID target) {
    container_.set(object, property, ByteWriter(options_.container).u32(target).u32(0).written());
}

Bytes Omf1Builder::refsValue(const std::vector<ObjectID>& targets) const {
    Bytes value =
        ByteWriter(options_.values).u16(static_cast<std::uint16_t>(targets.size())).written();
    for (const ObjectID target : targets) {
        const Bytes entry = ByteWriter(options_.container).u32(target).u32(0).written();
        value.insert(value.end(), entry.begin(), entry.end());
    }
    return value;
}

void Omf1Builder::refs(ObjectID object, std::string_view property,
                       const std::vector<ObjectID>& targets) {
    container_.set(object, property, refsValue(targets));
}

ObjectBuilder Omf1Builder::component(std::string_view classID, std::int32_t length) {
    return object(classID)
        .int16("OMFI:CPNT:TrackKind", kind_)
        .rational("OMFI:CPNT:EditRate", editRate_)
        .int32("OMFI:CLIP:Length", length);
}

ObjectBuilder Omf1Builder::clip(const ClipSpec& given) {
    ObjectBuilder clip = component("SCLP", given.length)
                             .uid("OMFI:SCLP:SourceID", given.source)
                             .int16("OMFI:SCLP:SourceTrack", given.track)
                             .int32("OMFI:SCLP:SourcePosition", given.position);
    if (given.name) {
        clip.string("OMFI:CPNT:Name", *given.name);
    }
    return clip;
}

ObjectBuilder Omf1Builder::sequence(const std::vector<ObjectID>& components,
                                    std::optional<std::string> name) {
    ObjectBuilder sequence = component("SEQU", 0).without("OMFI:CLIP:Length");
    if (name) {
        sequence.string("OMFI:CPNT:Name", *name);
    }
    refs(sequence, "OMFI:SEQU:Sequence", components);
    return sequence;
}

ObjectBuilder Omf1Builder::transition(std::int32_t length, std::int32_t cutPoint) {
    return component("TRAN", 0)
        .without("OMFI:CLIP:Length")
        .int32("OMFI:TRKG:GroupLength", length)
        .int32("OMFI:TRAN:CutPoint", cutPoint);
}

ObjectBuilder Omf1Builder::timecode(std::int16_t fps, std::int32_t start, std::int32_t flags,
                                    Ratio rate) {
    return component("TCCP", endless)
        .int16("OMFI:CPNT:TrackKind", timecodeKind)
        .rational("OMFI:CPNT:EditRate", rate)
        .int16("OMFI:TCCP:FPS", fps)
        .int32("OMFI:TCCP:StartTC", start)
        .int32("OMFI:TCCP:Flags", flags);
}

ObjectBuilder Omf1Builder::track(std::int16_t label, ObjectID component) {
    ObjectBuilder track = object("TRAK").int16("OMFI:TRAK:LabelNumber", label);
    ref(track, "OMFI:TRAK:TrackComponent", component);
    return track;
}

ObjectBuilder Omf1Builder::mob(const MobSpec& given) {
    ObjectBuilder mob = object("MOBJ")
                            .uid("OMFI:MOBJ:MobID", given.id)
                            .int32("OMFI:MOBJ:UsageCode", given.usage)
                            .int32("OMFI:MOBJ:StartPosition", 0)
                            .int16("OMFI:CPNT:TrackKind", 0)
                            .rational("OMFI:CPNT:EditRate", editRate_)
                            .int32("OMFI:TRKG:GroupLength", endless);
    if (given.name) {
        mob.string("OMFI:CPNT:Name", *given.name);
    }
    if (given.media) {
        ref(mob, "OMFI:MOBJ:PhysicalMedia", *given.media);
    }
    refs(mob, "OMFI:TRKG:Tracks", given.tracks);
    (given.media ? sources_ : compositions_).push_back({given.id, mob});
    return mob;
}

ObjectBuilder Omf1Builder::descriptor(std::string_view classID, Ratio sampleRate) {
    return object(classID).rational("OMFI:MDFL:SampleRate", sampleRate);
}

ObjectBuilder Omf1Builder::media(std::string_view classID, MobID id, Bytes data) {
    const std::string prefix = "OMFI:" + std::string(classID);
    ObjectBuilder media =
        object(classID).uid(prefix + ":MobID", id).bytes(prefix + ":Data", std::move(data));
    media_.push_back({id, media});
    return media;
}

ObjectBuilder Omf1Builder::audioFile(const AudioFileSpec& given) {
    const ObjectBuilder described = descriptor("AIFD");
    if (!given.locators.empty()) {
        refs(described, "OMFI:MDES:Locator", given.locators);
    }
    if (given.media) {
        media("AIFC", given.id, *given.media);
    }
    return mob({.id = given.id,
                .name = given.name,
                .tracks = {track(1, clip({.length = given.length, .track = 0}))},
                .media = described});
}

Bytes Omf1Builder::index(const std::vector<Indexed>& entries) const {
    Bytes value =
        ByteWriter(options_.values).u16(static_cast<std::uint16_t>(entries.size())).written();
    for (const Indexed& entry : entries) {
        const Bytes id =
            ByteWriter(options_.values).u32(entry.id.a).u32(entry.id.b).u32(entry.id.c).written();
        const Bytes object = ByteWriter(options_.container).u32(entry.object).u32(0).written();
        value.insert(value.end(), id.begin(), id.end());
        value.insert(value.end(), object.begin(), object.end());
    }
    return value;
}

Bytes Omf1Builder::build() const {
    ContainerBuilder finished = container_;
    const auto list = [&](std::string_view property, const std::vector<Indexed>& entries) {
        if (!finished.has(head_, property)) {
            finished.set(head_, property, index(entries));
        }
    };
    list("OMFI:CompositionMobs", compositions_);
    list("OMFI:SourceMobs", sources_);
    list("OMFI:MediaData", media_);
    return finished.build();
}

}  // namespace trellant::testing
