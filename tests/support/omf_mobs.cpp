// Mobs, media and where media lie, of a document under construction.
#include <trellant_testing/omf_builder.h>
#include <utility>

namespace trellant::testing {

ObjectBuilder OmfBuilder::mob(std::string_view classID, const MobSpec& spec) {
    ObjectBuilder mob = object(classID).uid("OMFI:MOBJ:MobID", spec.id);
    if (spec.name) {
        mob.string("OMFI:MOBJ:Name", *spec.name);
    }
    if (spec.descriptor) {
        mob.ref("OMFI:SMOB:MediaDescription", *spec.descriptor);
    }
    mob.refs("OMFI:MOBJ:Slots", spec.slots);
    mobs_.push_back(mob);
    return mob;
}

ObjectBuilder OmfBuilder::composition(const CompositionSpec& spec) {
    ObjectBuilder composition =
        mob("CMOB", {.id = spec.id, .name = spec.name, .slots = spec.slots});
    if (spec.isPrimary) {
        primaryMobs_.push_back(composition);
    }
    return composition;
}

ObjectBuilder OmfBuilder::descriptor(const DescriptorSpec& spec) {
    ObjectBuilder descriptor = object(spec.classID);
    if (spec.sampleRate) {
        descriptor.rational("OMFI:MDFL:SampleRate", *spec.sampleRate);
    }
    if (spec.length) {
        descriptor.position("OMFI:MDFL:Length", *spec.length);
    }
    if (!spec.locators.empty()) {
        descriptor.refs("OMFI:MDES:Locator", spec.locators);
    }
    return descriptor;
}

ObjectBuilder OmfBuilder::media(std::string_view classID, std::string_view property, MobID id,
                                Bytes data) {
    ObjectBuilder media =
        object(classID).uid("OMFI:MDAT:MobID", id).bytes(property, std::move(data));
    mediaData_.push_back(media);
    return media;
}

ObjectBuilder OmfBuilder::waveMedia(MobID id, Bytes data) {
    return media("WAVE", "OMFI:WAVE:AudioData", id, std::move(data));
}

ObjectBuilder OmfBuilder::aifcMedia(MobID id, Bytes data) {
    return media("AIFC", "OMFI:AIFC:AudioData", id, std::move(data));
}

ObjectBuilder OmfBuilder::audioFile(const AudioFileSpec& spec) {
    const bool isWave = spec.kind == MediaKind::wave;
    if (spec.media) {
        isWave ? waveMedia(spec.id, *spec.media) : aifcMedia(spec.id, *spec.media);
    }
    const ObjectBuilder fileDescriptor = descriptor({.classID = isWave ? "WAVD" : "AIFD",
                                                     .sampleRate = spec.sampleRate,
                                                     .length = spec.length,
                                                     .locators = spec.locators});
    // A file is where the chain of sources ends: its clip names no source.
    const ObjectBuilder fileSlot = slot({.editRate = spec.sampleRate,
                                         .segment = clip({.length = spec.length, .track = 0}),
                                         .track = track(spec.track)});
    return sourceMob(
        {.id = spec.id, .name = spec.name, .slots = {fileSlot}, .descriptor = fileDescriptor});
}

ObjectBuilder OmfBuilder::locator(std::string_view classID, std::string_view property,
                                  std::string_view text) {
    return object(classID).string(property, text);
}

ObjectBuilder OmfBuilder::unixLocator(std::string_view path) {
    return locator("UNXL", "OMFI:UNXL:PathName", path);
}

ObjectBuilder OmfBuilder::dosLocator(std::string_view path) {
    return locator("DOSL", "OMFI:DOSL:PathName", path);
}

ObjectBuilder OmfBuilder::windowsLocator(std::string_view path) {
    return locator("WINL", "OMFI:WINL:PathName", path);
}

ObjectBuilder OmfBuilder::networkLocator(std::string_view url) {
    return locator("NETL", "OMFI:NETL:URLString", url);
}

ObjectBuilder OmfBuilder::textLocator(std::string_view name) {
    return locator("TXTL", "OMFI:TXTL:Name", name);
}

ObjectBuilder OmfBuilder::macLocator(std::string_view fileName) {
    return locator("MACL", "OMFI:MACL:FileName", fileName);
}

}  // namespace trellant::testing
