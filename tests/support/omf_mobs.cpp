// SPDX-License-Identifier: Apache-2.0
// Mobs, media and where media lie, of a document under construction.
#include <trellant_testing/omf_builder.h>
#include <utility>

namespace trellant::testing {

ObjectBuilder OmfBuilder::mob(std::string_view classID, const MobSpec& given) {
    ObjectBuilder mob = object(classID).uid("OMFI:MOBJ:MobID", given.id);
    if (given.name) {
        mob.string("OMFI:MOBJ:Name", *given.name);
    }
    if (given.descriptor) {
        mob.ref("OMFI:SMOB:MediaDescription", *given.descriptor);
    }
    mob.refs("OMFI:MOBJ:Slots", given.slots);
    mobs_.push_back(mob);
    return mob;
}

ObjectBuilder OmfBuilder::composition(const CompositionSpec& given) {
    ObjectBuilder composition =
        mob("CMOB", {.id = given.id, .name = given.name, .slots = given.slots});
    if (given.isPrimary) {
        primaryMobs_.push_back(composition);
    }
    return composition;
}

ObjectBuilder OmfBuilder::descriptor(const DescriptorSpec& given) {
    ObjectBuilder descriptor = object(given.classID);
    if (given.sampleRate) {
        descriptor.rational("OMFI:MDFL:SampleRate", *given.sampleRate);
    }
    if (given.length) {
        descriptor.position("OMFI:MDFL:Length", *given.length);
    }
    if (!given.locators.empty()) {
        descriptor.refs("OMFI:MDES:Locator", given.locators);
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

ObjectBuilder OmfBuilder::audioFile(const AudioFileSpec& given) {
    const bool isWave = given.kind == MediaKind::wave;
    if (given.media) {
        isWave ? waveMedia(given.id, *given.media) : aifcMedia(given.id, *given.media);
    }
    const ObjectBuilder fileDescriptor = descriptor({.classID = isWave ? "WAVD" : "AIFD",
                                                     .sampleRate = given.sampleRate,
                                                     .length = given.length,
                                                     .locators = given.locators});
    // A file is where the chain of sources ends: its clip names no source.
    const ObjectBuilder fileSlot = slot({.editRate = given.sampleRate,
                                         .segment = clip({.length = given.length, .track = 0}),
                                         .track = track(given.track)});
    return sourceMob(
        {.id = given.id, .name = given.name, .slots = {fileSlot}, .descriptor = fileDescriptor});
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
