// SPDX-License-Identifier: Apache-2.0
#include "composition_writer.h"

#include "wave_bytes.h"

namespace trellant::bench {

namespace {

/// Of every described file, in samples.
constexpr std::uint32_t fileLength = 2'000'000'000;
constexpr std::string_view littleEndian = "II";
constexpr std::string_view bigEndian = "MM";

}  // namespace

CompositionWriter::CompositionWriter(ContainerStream& stream) : stream_(stream) {
    stream_.object("HEAD");
    stream_.value(Property::headVersion, std::string_view("\2\0", 2));
    const bool isLittle = stream_.options().byteOrder == OMFByteOrder::little;
    stream_.value(Property::headByteOrder, isLittle ? littleEndian : bigEndian);
    primaryMobs_ = stream_.list(Property::headPrimaryMobs);
    mobs_ = stream_.list(Property::headMobs);
    mediaData_ = stream_.list(Property::headMediaData);
    const auto definition = [&](std::string_view classID, Property property,
                                const std::string& name) {
        const ObjectID object = stream_.object(classID);
        text(property, name);
        return object;
    };
    sound_ = definition("DDEF", Property::dataKindID, "omfi:data:Sound");
    timecode_ = definition("DDEF", Property::dataKindID, "omfi:data:Timecode");
    gain_ = definition("EDEF", Property::effectDefinitionID, "omfi:effect:MonoAudioGain");
    pan_ = definition("EDEF", Property::effectDefinitionID, "omfi:effect:MonoAudioPan");
}

void CompositionWriter::identifier(Property property, MobID id) {
    stream_.words(property, {id.family, id.index, 7});
}

ObjectID CompositionWriter::component(std::string_view classID, std::uint32_t length,
                                      ObjectID dataKind) {
    const ObjectID object = stream_.object(classID);
    stream_.reference(Property::componentDataKind, dataKind);
    stream_.number(Property::componentLength, length, 4);
    return object;
}

ObjectID CompositionWriter::clip(const ClipSpec& given) {
    const ObjectID object = sound("SCLP", given.length);
    if (!given.name.empty()) {
        text(Property::componentName, given.name);
    }
    const bool hasSource = given.source.family != 0;
    stream_.words(Property::clipSourceID,
                  {given.source.family, given.source.index, hasSource ? 7U : 0U});
    stream_.number(Property::clipSourceTrackID, hasSource ? 1 : 0, 4);
    stream_.number(Property::clipStartTime, given.start, 4);
    if (given.fadeIn != 0) {
        stream_.number(Property::clipFadeInLength, given.fadeIn, 4);
        stream_.number(Property::clipFadeInType, 2, 4);
    }
    return object;
}

ObjectID CompositionWriter::filler(std::uint32_t length) {
    return sound("FILL", length);
}

ObjectID CompositionWriter::selector(std::uint32_t length, ObjectID selected) {
    const ObjectID object = sound("SLCT", length);
    stream_.reference(Property::selectorSelected, selected);
    return object;
}

ObjectID CompositionWriter::scopeReference(std::uint32_t length, std::uint32_t scope,
                                           std::uint32_t slot) {
    const ObjectID object = sound("SREF", length);
    stream_.number(Property::scopeReferenceScope, scope, 4);
    stream_.number(Property::scopeReferenceSlot, slot, 4);
    return object;
}

ObjectID CompositionWriter::transition(std::uint32_t length) {
    const ObjectID object = sound("TRAN", length);
    stream_.number(Property::transitionCutPoint, length / 2, 4);
    return object;
}

CompositionWriter::Parts CompositionWriter::sequence(std::uint32_t length) {
    const ObjectID object = sound("SEQU", length);
    return {object, stream_.list(Property::sequenceComponents)};
}

CompositionWriter::Parts CompositionWriter::nestedScope(std::uint32_t length) {
    const ObjectID object = sound("NEST", length);
    return {object, stream_.list(Property::nestedScopeSlots)};
}

CompositionWriter::Parts CompositionWriter::effect(EffectKind kind, std::uint32_t length) {
    const ObjectID object = sound("EFFE", length);
    stream_.reference(Property::effectKind, kind == EffectKind::gain ? gain_ : pan_);
    return {object, stream_.list(Property::effectSlots)};
}

void CompositionWriter::argument(const Parts& effect, std::int32_t number, ObjectID value) {
    const ObjectID slot = stream_.object("ESLT");
    stream_.number(Property::effectSlotArgID, static_cast<std::uint32_t>(number), 4);
    stream_.reference(Property::effectSlotArgValue, value);
    stream_.append(effect.list, slot);
}

ObjectID CompositionWriter::constantValue(std::uint32_t hundredths) {
    const ObjectID object = sound("CVAL", 0);
    stream_.words(Property::constantValue, {hundredths, 100});
    return object;
}

ObjectID CompositionWriter::varyingValue(std::uint32_t length,
                                         const std::vector<PointSpec>& points) {
    const ObjectID object = sound("VVAL", length);
    stream_.number(Property::varyingInterpolation, 2, 2);
    const List list = stream_.list(Property::varyingPoints);
    for (const PointSpec& point : points) {
        const ObjectID pointObject = stream_.object("CTLP");
        stream_.words(Property::pointTime, {point.time, 100});
        stream_.words(Property::pointValue, {point.value, 100});
        stream_.append(list, pointObject);
    }
    return object;
}

CompositionWriter::List CompositionWriter::beginMob(std::string_view classID, MobID id,
                                                    const std::string& name,
                                                    std::optional<ObjectID> descriptor) {
    const ObjectID mob = stream_.object(classID);
    identifier(Property::mobID, id);
    text(Property::mobName, name);
    if (descriptor) {
        stream_.reference(Property::mobDescription, *descriptor);
    }
    const List slots = stream_.list(Property::mobSlots);
    stream_.append(mobs_, mob);
    if (classID == "CMOB") {
        stream_.append(primaryMobs_, mob);
    }
    return slots;
}

void CompositionWriter::slot(List slots, std::uint32_t number, const std::string& name,
                             ObjectID segment) {
    const ObjectID description = stream_.object("TRKD");
    stream_.number(Property::trackID, number, 4);
    if (!name.empty()) {
        text(Property::trackName, name);
    }
    stream_.number(Property::trackPhysicalTrack, 1, 4);
    const ObjectID slot = stream_.object("MSLT");
    stream_.words(Property::slotEditRate, {unitsPerSecond, 1});
    stream_.reference(Property::slotSegment, segment);
    stream_.reference(Property::slotTrackDesc, description);
    stream_.append(slots, slot);
}

ObjectID CompositionWriter::descriptor(const std::optional<std::string>& dosPath) {
    const ObjectID object = stream_.object("WAVD");
    stream_.words(Property::fileSampleRate, {unitsPerSecond, 1});
    stream_.number(Property::fileLength, fileLength, 4);
    if (dosPath) {
        const List locators = stream_.list(Property::fileLocators);
        const ObjectID locator = stream_.object("DOSL");
        text(Property::dosLocatorPath, *dosPath);
        stream_.append(locators, locator);
    }
    return object;
}

void CompositionWriter::file(const FileSpec& given) {
    const ObjectID described = descriptor(given.dosPath);
    const List slots = beginMob("SMOB", given.id, given.name, described);
    // A file is where the chain of sources ends: its clip names no source.
    slot(slots, 1, {}, clip({.length = fileLength}));
    if (given.media) {
        media(given.id, *given.media);
    }
}

void CompositionWriter::unusedMob(MobID id, const std::string& name) {
    const ObjectID described = descriptor(std::nullopt);
    static_cast<void>(beginMob("SMOB", id, name, described));
}

void CompositionWriter::passage(std::string_view classID, MobID id, const std::string& name,
                                MobID target) {
    const List slots = beginMob(classID, id, name, std::nullopt);
    slot(slots, 1, {}, clip({.length = fileLength, .source = target}));
}

void CompositionWriter::media(MobID id, const MediaSpec& given) {
    const ObjectID object = stream_.object("WAVE");
    identifier(Property::mediaMobID, id);
    const WaveBytes wave(given.byteCount, id.index, given.bytesInPiece);
    stream_.longValue(Property::waveAudioData,
                      {.byteCount = given.byteCount,
                       .piece = [&](std::uint64_t offset) { return wave.piece(offset); },
                       .alignment = given.alignment,
                       .remainder = given.remainder,
                       .scattered = given.bytesInPiece != 0});
    stream_.append(mediaData_, object);
}

void CompositionWriter::beginComposition(const std::string& name) {
    tracks_ = beginMob("CMOB", {0xC0, 0}, name, std::nullopt);
    const ObjectID timecode = component("TCCP", 0, timecode_);
    stream_.number(Property::timecodeFPS, 25, 2);
    stream_.number(Property::timecodeDrop, 0, 2);
    stream_.number(Property::timecodeStart, 90'000, 4);
    slot(tracks_, 0, "Timecode", timecode);
}

void CompositionWriter::track(std::uint32_t number, const std::string& name, ObjectID segment) {
    slot(tracks_, number, name, segment);
}

}  // namespace trellant::bench
