// SPDX-License-Identifier: Apache-2.0
// The order of things: the header with its indexes, sequences, which tell what their components
// count in, mobs, then every other object by its class. presented_mobs.cpp has mobs and tracks,
// components.cpp what stands on tracks.
#include "presentation.h"

#include <algorithm>
#include <utility>

namespace trellant {

namespace {

std::uint32_t lastObjectOf(const BentoContainer& container) {
    const auto ids = container.objectIDs();
    return ids.empty() ? 0 : ids.back();
}

}  // namespace

Presentation::Presentation(OlderObjects& objects)
    : objects_(objects), table_(objects.byteOrder(), lastObjectOf(objects.container())) {
    addHeader();
    readIdentities();
    chooseCompositions();
    addSequences();
    readMediaIdentities();
    addMobs();
    for (const std::uint32_t id : objects_.container().objectIDs()) {
        addObject(OMFObject{id});
    }
}

OMFOlderModel Presentation::takeModel() {
    return {objects_.version().value_or("1.x"), std::move(remarks_), std::move(formats_)};
}

void Presentation::remark(OMFObject object, std::string sentence, LossKind kind) {
    objects_.count(1);
    remarks_.push_back({.object = object, .kind = kind, .sentence = std::move(sentence)});
}

void Presentation::remarkUnreadable(OMFObject object, OlderProperty property) {
    remark(object, std::string(nameOf(property)) + " is missing or cannot be read");
}

void Presentation::copy(OMFObject to, OMFProperty presented, OMFObject from,
                        OlderProperty property) {
    const auto pieces = objects_.pieces(from, property);
    objects_.count(pieces.size());
    table_.copy(to, presented, pieces);
}

void Presentation::addHeader() {
    const OMFObject header = objects_.header();
    if (header == OMFObject::none) {
        return;
    }
    table_.classID(header, "HEAD");
    table_.text(header, OMFProperty::headByteOrder,
                objects_.byteOrder() == OMFByteOrder::big ? "MM" : "II");
    copy(header, OMFProperty::headLastModified, header, OlderProperty::lastModified);
    if (!objects_.saysByteOrder()) {
        remark(header, std::string(nameOf(OlderProperty::byteOrder)) +
                           " is missing or unknown: values are read as the container has them");
    }
}

void Presentation::readIdentities() {
    for (const auto index :
         {OlderProperty::compositionMobs, OlderProperty::sourceMobs, OlderProperty::mediaData}) {
        for (const IndexedMob& entry :
             objects_.mobIndex(objects_.header(), index).value_or(std::vector<IndexedMob>())) {
            identities_.try_emplace(entry.object, entry.mobID);
        }
    }
}

std::optional<OMFUID> Presentation::identityOf(OMFObject object, OlderProperty property) const {
    if (const auto own = objects_.uid(object, property)) {
        return own;
    }
    const auto indexed = identities_.find(object);
    return indexed == identities_.end() ? std::nullopt : std::optional(indexed->second);
}

void Presentation::readMediaIdentities() {
    for (const std::uint32_t id : objects_.container().objectIDs()) {
        const OMFObject object{id};
        const std::string classID = objects_.classOf(object);
        if (classID != "AIFC" && classID != "WAVE") {
            continue;
        }
        if (const auto identity = identityOf(
                object, classID == "WAVE" ? OlderProperty::waveMobID : OlderProperty::aifcMobID)) {
            mediaIdentities_.push_back(*identity);
        }
    }
    std::sort(mediaIdentities_.begin(), mediaIdentities_.end());
}

void Presentation::addObject(OMFObject object) {
    const std::string classID = objects_.classOf(object);
    if (classID.empty() || classID == "HEAD" || classID == "MOBJ") {
        return;
    }
    if (classID == "TRAK") {
        addTrack(object);
    } else if (classID == "AIFC" || classID == "WAVE") {
        addMedia(object, classID == "WAVE");
    } else {
        addComponent(object, classID);
        addDescription(object);
    }
}

void Presentation::addMedia(OMFObject media, bool isWave) {
    table_.classID(media, isWave ? "WAVE" : "AIFC");
    if (const auto id =
            identityOf(media, isWave ? OlderProperty::waveMobID : OlderProperty::aifcMobID)) {
        table_.uid(media, OMFProperty::mediaMobID, *id);
    }
    copy(media, isWave ? OMFProperty::waveAudioData : OMFProperty::aifcAudioData, media,
         isWave ? OlderProperty::waveData : OlderProperty::aifcData);
}

/// What descriptors and locators say.
void Presentation::addDescription(OMFObject object) {
    if (const auto rate = objects_.rate(object, OlderProperty::sampleRate)) {
        table_.rational(object, OMFProperty::fileSampleRate, *rate);
    }
    if (objects_.has(object, OlderProperty::locator)) {
        if (const auto locators = objects_.references(object, OlderProperty::locator)) {
            table_.references(object, OMFProperty::descriptorLocator, *locators);
        }
    }
    copy(object, OMFProperty::macLocatorFileName, object, OlderProperty::macFileName);
    copy(object, OMFProperty::unixLocatorPath, object, OlderProperty::unixPath);
    copy(object, OMFProperty::dosLocatorPath, object, OlderProperty::dosPath);
    copy(object, OMFProperty::textLocatorName, object, OlderProperty::textName);
}

}  // namespace trellant
